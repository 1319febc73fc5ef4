// A start attempt as a row of its family's table: how the start baselines are
// formed, which baseline pairs it takes, which estimate of the transitions it
// takes, and which entries it holds depending on whether that estimate is
// usable and its pairs are given.  One runner (attempt_runner.h) reads the
// rows of every family.
#pragma once

#include "engine/held_mask.h"
#include "strategies/start_forms.h"

namespace quent {

// Curve: the pair of the start form; Given: the pair handed in, unless it is
// absent, and then the start form's.
enum class PairFrom : unsigned char { Curve, Given };

// The estimate of the transitions a member takes, if any.  A member taking
// an amplitude starts from it only while it is usable; one taking it as
// given always does, its caller having filtered it.
enum class Takes : unsigned char { Nothing, Midpoint, Midpoints, Amplitude, AmplitudeAsGiven };

template <int P>
struct AttemptMember {
  const char* name;
  StartForm form;
  PairFrom native;
  PairFrom unfolded;
  Takes takes;
  // [estimate usable][native pair given][unfolded pair given]
  HeldMask<P> mask[2][2][2];
};

namespace member {

// The mask of every case.
template <int P>
constexpr AttemptMember<P> always(const char* name, StartForm form, PairFrom native,
                                  PairFrom unfolded, HeldMask<P> m) {
  return {name, form, native, unfolded, Takes::Nothing, {{{m, m}, {m, m}}, {{m, m}, {m, m}}}};
}

// The mask of every case, for a member that takes an estimate.
template <int P>
constexpr AttemptMember<P> taking(const char* name, StartForm form, Takes takes, HeldMask<P> m) {
  return {name, form, PairFrom::Curve, PairFrom::Curve, takes, {{{m, m}, {m, m}}, {{m, m}, {m, m}}}};
}

// One mask while the estimate is usable, another otherwise.
template <int P>
constexpr AttemptMember<P> withEstimate(const char* name, StartForm form, PairFrom native,
                                        PairFrom unfolded, Takes takes, HeldMask<P> usable,
                                        HeldMask<P> otherwise) {
  const HeldMask<P> u = usable, o = otherwise;
  return {name, form, native, unfolded, takes, {{{o, o}, {o, o}}, {{u, u}, {u, u}}}};
}

// A member keeping the native pair: one mask while its pair is given, another
// while it is absent, each with the estimate usable and not.
template <int P>
constexpr AttemptMember<P> keepingNative(const char* name, StartForm form, Takes takes,
                                         HeldMask<P> givenUsable, HeldMask<P> absentUsable,
                                         HeldMask<P> given, HeldMask<P> absent) {
  return {name,  form, PairFrom::Given, PairFrom::Curve, takes,
          {{{absent, absent}, {given, given}}, {{absentUsable, absentUsable}, {givenUsable, givenUsable}}}};
}

}  // namespace member
}  // namespace quent
