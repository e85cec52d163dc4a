// Out-of-line destructors anchor the interfaces' virtual tables here.
#include "engine/filter.h"
#include "engine/filter_node.h"
#include "engine/texture.h"

IHFTexture::~IHFTexture() = default;
IHFFilter::~IHFFilter() = default;
IHFFilterNode::~IHFFilterNode() = default;
