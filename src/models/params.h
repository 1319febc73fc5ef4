// Index of every entry of the parameter vectors of the three transition
// models.  RT is always last and always held.
#pragma once

namespace quent {

namespace p1 {  // OneTransitionParams
enum : int { dG, Cm, nativeIntercept, nativeSlope, unfoldedIntercept, unfoldedSlope, RT, count };
}
namespace p2 {  // TwoTransitionParams
enum : int { dG1, Cm1, dG2, Cm2, amp1, nativeIntercept, nativeSlope, unfoldedIntercept,
             unfoldedSlope, RT, count };
}
namespace p3 {  // ThreeTransitionParams
enum : int { dG1, Cm1, dG2, Cm2, dG3, Cm3, amp1, amp2, nativeIntercept, nativeSlope,
             unfoldedIntercept, unfoldedSlope, RT, count };
}

}  // namespace quent
