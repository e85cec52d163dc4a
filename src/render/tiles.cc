#include "render/tiles.h"

#include <cstring>

#include "image/image_internal.h"

namespace {

int lastTileSize(int size, int count) { return size - (count - 1) * (size / count); }

// Tile rows lie width x channels bytes apart: a record whose stride or size
// promises fewer bytes than that walk spans is left alone.
bool tileInsideImage(const _Image* image, const TileRect& tile, int channels) {
    if (tile.x < 0 || tile.y < 0 || tile.width <= 0 || tile.height <= 0) return false;
    const int64_t rowBytes = int64_t{image->width} * channels;
    const int64_t first = int64_t{tile.y} * rowBytes + int64_t{tile.x} * channels;
    const int64_t span = int64_t{tile.height - 1} * rowBytes + int64_t{tile.width} * channels;
    return image->data != nullptr && ifc::spanInside(first, span, ifc::imageExtent(image));
}

}  // namespace

int tileCountForWidth(int size, int limit) {
    if (size <= limit) return 1;
    int count = 2;
    // Past count == size every tile is one pixel wide; stop there whatever the limit.
    while (count < size && lastTileSize(size, count) > limit) ++count;
    return count;
}

int tileCountForHeight(int size, int limit) {
    if (size <= limit) return 1;
    int count = 2;
    while (count < size && static_cast<float>(lastTileSize(size, count)) > static_cast<float>(limit)) ++count;
    return count;
}

bool tileRect(int width, int height, int col, int row, int cols, int rows, TileRect* out) {
    if (cols < 1 || rows < 1 || col < 0 || row < 0 || col >= cols || row >= rows) return false;
    int tileWidth = width / cols;
    int tileHeight = height / rows;
    out->x = col * tileWidth;
    out->y = row * tileHeight;
    out->width = col == cols - 1 ? width - (cols - 1) * tileWidth : tileWidth;
    out->height = row == rows - 1 ? height - (rows - 1) * tileHeight : tileHeight;
    return out->width > 0 && out->height > 0;
}

bool packTileRGBA(const _Image* image, const TileRect& tile, uint8_t* rgba) {
    int channels = image->channels;
    if ((channels != 3 && channels != 4) || !tileInsideImage(image, tile, channels)) return false;
    size_t rowBytes = static_cast<size_t>(image->width) * channels;
    for (int y = 0; y < tile.height; ++y) {
        const uint8_t* src = image->data + (tile.y + y) * rowBytes + static_cast<size_t>(tile.x) * channels;
        uint8_t* dst = rgba + static_cast<size_t>(y) * tile.width * 4;
        if (channels == 4) {
            memcpy(dst, src, static_cast<size_t>(tile.width) * 4);
            continue;
        }
        for (int x = 0; x < tile.width; ++x) {
            dst[x * 4 + 0] = src[x * 3 + 0];
            dst[x * 4 + 1] = src[x * 3 + 1];
            dst[x * 4 + 2] = src[x * 3 + 2];
            dst[x * 4 + 3] = 255;
        }
    }
    return true;
}

bool unpackTileRGBA(const uint8_t* rgba, const TileRect& tile, _Image* image) {
    int channels = image->channels;
    if ((channels != 3 && channels != 4) || !tileInsideImage(image, tile, channels)) return false;
    size_t rowBytes = static_cast<size_t>(image->width) * channels;
    for (int y = 0; y < tile.height; ++y) {
        uint8_t* dst = image->data + (tile.y + y) * rowBytes + static_cast<size_t>(tile.x) * channels;
        const uint8_t* src = rgba + static_cast<size_t>(y) * tile.width * 4;
        if (channels == 4) {
            memcpy(dst, src, static_cast<size_t>(tile.width) * 4);
            continue;
        }
        for (int x = 0; x < tile.width; ++x) {
            dst[x * 3 + 0] = src[x * 4 + 0];
            dst[x * 3 + 1] = src[x * 4 + 1];
            dst[x * 3 + 2] = src[x * 4 + 2];
        }
    }
    return true;
}
