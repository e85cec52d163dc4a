#include <gtest/gtest.h>

#include "image_filter/image.h"

TEST(ImageRecord, Placeholder) { SUCCEED(); }
