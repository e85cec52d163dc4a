// The directory bundle serves files as one-row byte images; a file whose
// length an int cannot hold is refused with a log line, never truncated.
#include <gtest/gtest.h>

#include <unistd.h>

#include <string>

#include "engine/gl/scratch_bundle.h"
#include "jni/capture_stderr.h"

TEST(DirectoryResources, FilesBecomeByteRowsAndOversizedOnesAreRefused) {
    ScratchBundle bundle("resources");
    bundle.write("three.bin", std::string("a\0c", 3));
    bundle.write("empty.bin", "");
    // Sparse: 2 GiB of length without the disk space.
    bundle.write("huge.bin", "");
    // truncate64: off_t is 32 bits on 32-bit ABIs.
    ASSERT_EQ(truncate64((bundle.path() + "/huge.bin").c_str(), 0x80000000LL), 0);

    struct Case {
        const char* path;
        int width;  // -1: no image
        std::string bytes;
    };
    const Case cases[] = {
        {"three.bin", 3, std::string("a\0c", 3)},
        {"empty.bin", 0, ""},
        {"missing.bin", -1, ""},
        {nullptr, -1, ""},
    };
    for (const Case& c : cases) {
        _Image* image = bundle.loadData(c.path);
        const char* name = c.path ? c.path : "(null)";
        if (c.width < 0) {
            EXPECT_EQ(image, nullptr) << name;
            continue;
        }
        ASSERT_NE(image, nullptr) << name;
        EXPECT_EQ(image->width, c.width) << name;
        EXPECT_EQ(image->height, 1) << name;
        EXPECT_EQ(std::string(reinterpret_cast<char*>(image->data), c.width), c.bytes) << name;
        free_image(&image);
    }

    _Image* huge = reinterpret_cast<_Image*>(1);
    std::string log = captureStderr([&] { huge = bundle.loadData("huge.bin"); });
    EXPECT_EQ(huge, nullptr);
    EXPECT_NE(log.find("resource huge.bin: 2147483648 bytes, too large"), std::string::npos) << log;
}
