// contactimp_limo_arm.h: the port side of ContactImpl.
#ifndef JSR75_PIM_CONTACTIMP_LIMO_ARM_H
#define JSR75_PIM_CONTACTIMP_LIMO_ARM_H

#include <cstdint>

// The index of the first value of `field` whose stored type is 0, the preferred one, or -1. `handle` is not used.
int32_t ContactImp_getPreferredIndexN(int32_t handle, int32_t recindex, int32_t field);

#endif
