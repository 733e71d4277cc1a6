__attribute__((visibility("default"))) int EXPORTED(void);
int EXPORTED(void) {
    return 0;
}
