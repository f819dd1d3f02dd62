// What depends on the shader stage: screen-space derivatives and discarding a pixel.
// A compute stage has no neighbouring pixels and nothing to discard: where SFG_COMPUTE is defined all derivatives
// are zero and sfg_clip does nothing.
#ifndef SFG_STAGE_H
#define SFG_STAGE_H

#ifdef SFG_COMPUTE
#define sfg_ddx(v) ((v) * 0.0)
#define sfg_ddy(v) ((v) * 0.0)
#define sfg_fwidth(v) ((v) * 0.0)
#define sfg_clip(v)
#else
#define sfg_ddx(v) ddx(v)
#define sfg_ddy(v) ddy(v)
#define sfg_fwidth(v) fwidth(v)
#define sfg_clip(v) clip(v)
#endif

#endif
