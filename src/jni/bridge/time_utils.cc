// Clock helpers and the profiling and album hooks, which do nothing here.
#include <sys/time.h>

#include <cstdint>

#include "jni/bridge/bridge.h"

extern "C" {

// Milliseconds since the epoch, wrapping at 32 bits.
unsigned int getTime() {
    timeval now{};
    gettimeofday(&now, nullptr);
    return static_cast<unsigned int>(static_cast<uint64_t>(now.tv_sec) * 1000u +
                                     static_cast<uint64_t>(now.tv_usec) / 1000u);
}

double get_tick_count() { return static_cast<double>(static_cast<int32_t>(getTime())); }

const char* get_time_string() { return "TODO"; }

void* generate_bundle_path() { return nullptr; }
void* read_bundle_image() { return nullptr; }
void writeImageToAlbum() {}

void start_time_recorder() {}
void pause_time_recorder() {}
void print_recorders() {}
void release_time_recorder() {}
int get_recorder_time() { return 0; }

}  // extern "C"
