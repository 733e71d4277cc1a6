// A small shared object: the seed for fuzzing a reader of such files.
extern "C" __attribute__((visibility("default"))) int ladspa_descriptor() {
    return 0;
}
