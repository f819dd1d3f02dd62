// Screen-space derivatives that exist in every stage.
// A compute stage has no neighbouring pixels: where SFG_COMPUTE is defined all derivatives are zero.
#ifndef SFG_DERIVATIVES_H
#define SFG_DERIVATIVES_H

#ifdef SFG_COMPUTE
#define sfg_ddx(v) ((v) * 0.0)
#define sfg_ddy(v) ((v) * 0.0)
#define sfg_fwidth(v) ((v) * 0.0)
#else
#define sfg_ddx(v) ddx(v)
#define sfg_ddy(v) ddy(v)
#define sfg_fwidth(v) fwidth(v)
#endif

#endif
