// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace harbour {
namespace {

template <class... T>
class Box {
  public:
    struct Lid {};
};
struct Berth {};

template <char letter>
struct Val {};

template <class T>
constexpr std::string_view kName = kx::typeName<T>();

// While compiling, with each compiler.
static_assert(kName<Berth> == "Berth");
static_assert(kName<int> == "int");
static_assert(kName<Box<int[2]>::Lid> == "Lid");
static_assert(kName<Val<'x'>>.ends_with('>'));
static_assert(kName<Box<Berth, Box<Berth>>>.starts_with("Box<") &&
              kName<Box<Berth, Box<Berth>>>.ends_with(">"));

}  // namespace
}  // namespace harbour
