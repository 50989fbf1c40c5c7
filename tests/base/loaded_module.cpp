// The library that library_test.cpp loads.
extern "C" int module_answer(void) { return 42; }
