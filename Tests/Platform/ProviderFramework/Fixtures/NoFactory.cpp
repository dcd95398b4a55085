// A library that is no provider library: it exports something else.
extern "C" __attribute__((visibility("default"))) int getSomethingElse() {
    return 1;
}
