// Runs a call with file descriptor 2 redirected to a scratch file and returns
// what was written there: on the host, liblog writes to stderr.
#ifndef IFC_TESTS_JNI_CAPTURE_STDERR_H
#define IFC_TESTS_JNI_CAPTURE_STDERR_H

#include <unistd.h>

#include <cstdio>
#include <string>

template <typename Call>
std::string captureStderr(Call call) {
    fflush(stderr);
    FILE* scratch = tmpfile();
    int saved = dup(2);
    dup2(fileno(scratch), 2);
    call();
    fflush(stderr);
    dup2(saved, 2);
    close(saved);
    std::string captured;
    rewind(scratch);
    char chunk[512];
    size_t got;
    while ((got = fread(chunk, 1, sizeof chunk, scratch)) > 0) captured.append(chunk, got);
    fclose(scratch);
    return captured;
}

#endif  // IFC_TESTS_JNI_CAPTURE_STDERR_H
