// A small shared object, the seed of what reads such files.
extern "C" __attribute__((visibility("default"))) int ladspa_descriptor() {
    return 0;
}
