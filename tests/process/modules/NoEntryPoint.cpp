// A shared object without any entry point.
extern "C" __attribute__((visibility("default"))) int SomethingElse() {
    return 0;
}
