#include "recording_filter.h"

int LabelTexture::live = 0;
int RecordingFilter::live = 0;
