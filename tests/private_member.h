#ifndef TESTS_PRIVATE_MEMBER_H_
#define TESTS_PRIVATE_MEMBER_H_

/// Access to a private member, for states that public operations reach only with more time or memory than a test
/// has. An explicit instantiation may name private members, so the class stays unchanged and access control stays on:
///
///   namespace private_member {
///   struct NextUnit {
///     friend constexpr auto Of(NextUnit);
///   };
///   template struct Opened<NextUnit, &AlarmArena::next_>;
///   }  // namespace private_member
///
///   arena.*Of(private_member::NextUnit()) = 7;
namespace private_member {

template <class Name, auto kMember>
struct Opened {
  friend constexpr auto Of(Name) { return kMember; }
};

}  // namespace private_member

#endif  // TESTS_PRIVATE_MEMBER_H_
