// Walking, seeking and filling collections. The peer of a walk is the same loop by hand over the block.

#include <kestrion/collection_cursor.h>

#include <benchmark/benchmark.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <string>
#include <vector>

namespace {

// A collection of one element type, released at the end.
class sample {
public:
    sample(int32_t kind, uint16_t code) : type_(qvt_coll_new_type(kind, 1)) {
        qvt_coll_field(type_, 1)->type = code;
        qvt_coll_field(type_, 1)->length = 255;
        qvt_coll_init(&record, type_, nullptr, 0);
    }
    ~sample() {
        qvt_coll_free(&record);
        free(type_);
    }
    sample(const sample &) = delete;
    sample &operator=(const sample &) = delete;

    void fill(int32_t count) {
        for (int32_t i = 0; i < count; ++i)
            qvt_coll_insert(&record, nullptr, &i, 4, 0);
    }

    coll_rec record = {};

private:
    coll_type *type_;
};

constexpr uint16_t integers = 2;
constexpr uint16_t texts = 13;

void walk(benchmark::State &state, uint16_t code, bool folded) {
    sample list(coll_list, code);
    list.fill(1'000'000);
    if (folded)
        qvt_coll_fold(&list.record);
    for (auto _ : state) {
        coll_cursor cursor = {};
        qvt_coll_open(&list.record, &cursor);
        void *data = nullptr;
        int32_t length = 0;
        unsigned sum = 0;
        while (qvt_coll_next(&list.record, &cursor, &data, &length) == 0) {
            sum += *static_cast<unsigned char *>(data);
            data = nullptr;
        }
        benchmark::DoNotOptimize(sum);
        qvt_coll_close(&list.record, &cursor);
    }
    state.SetItemsProcessed(state.iterations() * 1'000'000);
}
BENCHMARK_CAPTURE(walk, fixed_block, integers, true);
BENCHMARK_CAPTURE(walk, variable_block, texts, true);
BENCHMARK_CAPTURE(walk, log_alone, integers, false);

void walk_by_hand(benchmark::State &state) {
    const std::vector<int32_t> block(1'000'000, 7);
    for (auto _ : state) {
        unsigned sum = 0;
        for (const int32_t &element : block) {
            const void *data = &element;
            benchmark::DoNotOptimize(data);
            sum += *static_cast<const unsigned char *>(data);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * 1'000'000);
}
BENCHMARK(walk_by_hand);

void seek_over_log(benchmark::State &state) {
    sample list(coll_list, texts);
    list.fill(100'000);
    qvt_coll_fold(&list.record);
    coll_cursor cursor = {};
    qvt_coll_open(&list.record, &cursor);
    for (int32_t i = 0; i < 10'000; ++i)
        qvt_coll_update(&list.record, &cursor, "text", 4, 100'000 - 10 * i);
    for (auto _ : state)
        cursor_seek(&cursor, 0, CSEEK_END);
    qvt_coll_close(&list.record, &cursor);
}
BENCHMARK(seek_over_log)->Unit(benchmark::kMicrosecond);

// Linear when the time per element stays the same.
void fill(benchmark::State &state, int32_t kind) {
    for (auto _ : state) {
        sample list(kind, integers);
        list.fill(static_cast<int32_t>(state.range(0)));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK_CAPTURE(fill, list, coll_list)->Arg(10'000)->Arg(100'000);
BENCHMARK_CAPTURE(fill, set, coll_set)->Arg(10'000)->Arg(100'000);

} // namespace

BENCHMARK_MAIN();
