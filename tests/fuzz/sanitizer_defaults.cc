// Defaults for a fuzz binary started by hand, without scripts/fuzz: the leak
// check stops every thread and must not walk thread-local roots (its tracer
// faults on the GL driver's dynamic thread storage). LSAN_OPTIONS adds to it.
extern "C" const char* __lsan_default_options() {
    return "use_tls=0";
}
