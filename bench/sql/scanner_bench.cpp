// The scanner beside another database's scanner, and the eraser, on a megabyte of mixed statements. The
// other scanner also builds a list of its tokens, which has no switch.

#include <kestrion/password_eraser.h>
#include <kestrion/sql_tokens.h>

#include "side_by_side.h"

#include <benchmark/benchmark.h>
#include <pg_query.h>
#include <random>
#include <stdio.h>
#include <string>

namespace {

constexpr size_t bytes = 1 << 20;
constexpr double goal = 15; // times the other scanner

std::string mixed_statements() {
    const char *const statements[] = {
        "select customer_num, fname, lname from customer where state = 'CA' order by lname;\n",
        "update stock set unit_price = unit_price * 1.05, total = 17.50 where manu_code = 'HRO';\n",
        "insert into orders (order_num, order_date, note) values (1001, '05/20/2018', 'it''s');\n",
        "-- what follows is run at night\n",
        "delete from items where quantity <= 0 or (total_price >= 1e6 and stock_num <> 5);\n",
        "create index \"by date\" on orders (order_date, customer_num); /* kept */\n",
        "select a.x || b.y, count(*) from a, b where a.id = b.id group by 1 having count(*) > 2;\n",
    };
    std::mt19937 random(1);
    std::string text;
    while (text.size() < bytes)
        text += statements[random() % std::size(statements)];
    return text;
}

void walk(const std::string &text) {
    const char *end = text.c_str();
    for (;;) {
        const char *start = sqltoken(end, &end);
        if (start == end)
            return;
        benchmark::DoNotOptimize(start);
    }
}

void scanner(benchmark::State &state) {
    std::string text = mixed_statements();
    std::vector<contestant> field = {
        {"ours", [&] { walk(text); }},
        {"theirs", [&] { pg_query_free_scan_result(pg_query_scan(text.c_str())); }},
        {"eraser", [&] { erasepassword(text.data()); }},
    };
    for (auto _ : state)
        run_in_turns(field, 5, 1);
    const double speed = static_cast<double>(text.size()) / 1e6;
    state.counters["sqltoken MB/s"] = speed / field[0].median();
    state.counters["peer MB/s"] = speed / field[1].median();
    state.counters["ratio"] = field[1].median() / field[0].median();
    state.counters["goal"] = goal;
    state.counters["erasepassword MB/s"] = speed / field[2].median();
}
BENCHMARK(scanner)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
