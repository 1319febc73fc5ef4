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
// given always does, its caller having filtered it.  A member taking a pair
// of amplitudes bends it into shape by one of two rules: the pair as given
// unless its sum passes 1 (AmplitudePair), or moreover each within [0, 1]
// (AmplitudePairBounded); the family says how.
enum class Takes : unsigned char {
  Nothing, Midpoint, Midpoints, Amplitude, AmplitudeAsGiven, AmplitudePair, AmplitudePairBounded
};

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
                                  PairFrom unfolded, HeldMask<P> m, Takes takes = Takes::Nothing) {
  return {name, form, native, unfolded, takes, {{{m, m}, {m, m}}, {{m, m}, {m, m}}}};
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

// A mask for each case of given pairs, whatever the estimate: neither given,
// the native pair alone, the unfolded pair alone, both.
template <int P>
constexpr AttemptMember<P> byPairs(const char* name, StartForm form, PairFrom native,
                                   PairFrom unfolded, Takes takes, HeldMask<P> neither,
                                   HeldMask<P> nativeOnly, HeldMask<P> unfoldedOnly,
                                   HeldMask<P> both) {
  const HeldMask<P> n = neither, a = nativeOnly, u = unfoldedOnly, b = both;
  return {name, form, native, unfolded, takes, {{{n, u}, {a, b}}, {{n, u}, {a, b}}}};
}

}  // namespace member
}  // namespace quent
