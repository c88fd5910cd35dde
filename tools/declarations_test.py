#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""What declarations.py finds in a header with every shape that ours have."""
import unittest

from declarations import declarations

HEADER = r'''
#pragma once
#include <string>
#define NOT_CODE(x) \
    int wrong();
namespace kx {
class Ahead;
enum class Kind : unsigned char { First, Second };
using Callback = void (*)(int);
/// A comment with int wrong(); in it, a quote ' and a brace {.
class KX_EXPORT Shelf final : public Subclass<Shelf, NSObject> {
 public:
    enum class Side { Left };
    Shelf() : size_(1), room_{2} {}
    Shelf(const Shelf&) = delete;
    ~Shelf() override;
    [[nodiscard]] static std::shared_ptr<Shelf> shelf(std::string_view text = "a;b{", char end = '}');
    [[nodiscard]] virtual std::optional<std::string>
    title() const noexcept = 0;
    std::size_t size() const noexcept(true) { return size_ ? 1 : 0; }
    bool operator==(const Shelf& other) const;
    template <class T>
        requires(sizeof(T) <= 8)
    void put(T value, std::function<void(int)> then = {});
    int room = 1'000;
    void (*plain)(int) = nullptr;
    struct Place { int row() const { return 1; } };

 protected:
    virtual void willMove();
    void helper();

 private:
    struct Hidden { int wrong() { return 0; } };
    int wrong();
    int size_ = 0;
};
struct Internal { int compiled(); int visible() { return 2; } };
template <class T>
class [[nodiscard]] Box { public: T open() const; };
template <>
class Box<void> { public: void open() const; };
KX_EXPORT extern std::string selectLanguage;
inline constexpr double kLimits[] = {1.0, 2.0};
extern "C" KX_EXPORT void kxHook();
KX_EXPORT void freeFunction(int a,
                            int b);
void internalFunction();
}  // namespace kx
namespace other { inline int wrong() { return 1; } }
'''

EXPECTED = [
    ("Shelf", 'static std::shared_ptr<Shelf> shelf(std::string_view text = "a;b{", char end = \'}\')'),
    ("Shelf", "std::optional<std::string> title() const"),
    ("Shelf", "std::size_t size() const"),
    ("Shelf", "bool operator==(const Shelf& other) const"),
    ("Shelf", "void put(T value, std::function<void(int)> then = {})"),
    ("Shelf::Place", "int row() const"),
    ("Shelf", "void willMove()"),
    ("Internal", "int visible()"),
    ("Box", "T open() const"),
    ("Box<void>", "void open() const"),
    ("", "std::string selectLanguage"),
    ("", "constexpr double kLimits[] = {1.0, 2.0}"),
    ("", "void kxHook()"),
    ("", "void freeFunction(int a, int b)"),
]


class Declarations(unittest.TestCase):
    def test_every_shape(self):
        self.maxDiff = None
        self.assertEqual([(found.owner, found.spelling) for found in declarations(HEADER)], EXPECTED)

    def test_only_protected_virtual_operations_are_for_subclasses(self):
        self.assertEqual([found.spelling for found in declarations(HEADER) if found.for_subclasses],
                         ["void willMove()"])


if __name__ == "__main__":
    unittest.main()
