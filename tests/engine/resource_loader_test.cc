#include "engine/resource_loader.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "jni/capture_stderr.h"

namespace {

// The directory provider hands back a file's bytes with the byte count as the
// width. A file of 2 GiB or more (here a sparse one, nothing is written)
// cannot be counted in an int: it is refused with a log line before reading.
TEST(ResourceLoaderTest, DirectoryFilesBecomeBlobsAndHugeOnesAreRefused) {
    const std::filesystem::path root =
        std::filesystem::temp_directory_path() / ("resources." + std::to_string(getpid()));
    std::filesystem::create_directories(root);
    std::ofstream(root / "five") << "12345";
    std::ofstream(root / "empty");
    std::ofstream(root / "huge").close();
    std::filesystem::resize_file(root / "huge", (1ull << 31) + 7);

    HFDirectoryResourceProvider provider(root.string());
    _Image* five = provider.loadData("five");
    ASSERT_TRUE(five);
    EXPECT_EQ(5, five->width);
    EXPECT_EQ("12345", std::string(reinterpret_cast<char*>(five->data), 5));
    _Image* empty = provider.loadData("empty");
    ASSERT_TRUE(empty);
    EXPECT_EQ(0, empty->width);
    EXPECT_FALSE(provider.loadData("missing"));
    _Image* huge = nullptr;
    const std::string log = captureStderr([&] { huge = provider.loadData("huge"); });
    EXPECT_FALSE(huge);
    EXPECT_NE(std::string::npos, log.find("huge: 2147483655 bytes")) << log;
    free_image(&five);
    free_image(&empty);
    std::filesystem::remove_all(root);
}

}  // namespace
