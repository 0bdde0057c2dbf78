#ifndef KORMATH_REGISTRATION_REGISTRATION_H
#define KORMATH_REGISTRATION_REGISTRATION_H

// The registration kit: closest-point locator, correspondence records, rigid
// fits, pairwise cost, registered point sets and the registration tree.

#include <kormath/registration/closest_point_info.h>
#include <kormath/registration/point_locator.h>
#include <kormath/registration/point_mapper.h>
#include <kormath/registration/registered_points.h>
#include <kormath/registration/registration_constants.h>
#include <kormath/registration/registration_cost.h>
#include <kormath/registration/registration_tree.h>

#endif  // KORMATH_REGISTRATION_REGISTRATION_H
