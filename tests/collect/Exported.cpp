extern "C" __attribute__((visibility("default"))) int EXPORTED() {
    return 0;
}
