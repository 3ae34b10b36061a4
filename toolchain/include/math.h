// Mathematics of the C library, as far as the plug-in needs it.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif
double ceil(double x);
double fabs(double x);
double floor(double x);
double sin(double x);
float fabsf(float x);
#ifdef __cplusplus
}
#endif
