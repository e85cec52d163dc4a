// The BaseFilteRender objects that Java holds as handles. A handle Java
// passes back is used only while its renderer is alive, so a cleared or
// made-up handle is refused instead of deleted twice or written through.
#ifndef IFC_RENDER_RENDERER_HANDLES_H
#define IFC_RENDER_RENDERER_HANDLES_H

class BaseFilteRender;

void rememberRenderer(const BaseFilteRender* render);
// False when it was not remembered.
bool forgetRenderer(const BaseFilteRender* render);
bool isLiveRenderer(const BaseFilteRender* render);

#endif  // IFC_RENDER_RENDERER_HANDLES_H
