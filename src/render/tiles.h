// Large decoded images cut into tiles that fit the GPU's texture limit. Tile
// width is W / cols (integer division); the last column takes the remainder,
// likewise for rows. Image rows are width x channels bytes apart.
#ifndef IFC_RENDER_TILES_H
#define IFC_RENDER_TILES_H

#include <cstdint>

#include "image_filter/image.h"

struct TileRect {
    int x;
    int y;
    int width;
    int height;
};

// Smallest count whose last (widest) tile fits `limit`; 1 when size fits.
int tileCountForWidth(int size, int limit);
// The same, compared in single precision as the row count always was.
int tileCountForHeight(int size, int limit);

// False for counts below 1 or a tile outside the grid.
bool tileRect(int width, int height, int col, int row, int cols, int rows, TileRect* out);

// The tile as tight RGBA rows (3-channel pixels get alpha 255). False, with
// nothing read, unless the image has 3 or 4 channels and holds the tile.
bool packTileRGBA(const _Image* image, const TileRect& tile, uint8_t* rgba);
// Writes tight RGBA rows back into the tile (alpha dropped for 3 channels).
// False, with nothing written, in the same cases.
bool unpackTileRGBA(const uint8_t* rgba, const TileRect& tile, _Image* image);

#endif  // IFC_RENDER_TILES_H
