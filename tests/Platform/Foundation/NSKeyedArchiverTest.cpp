// SPDX-License-Identifier: MIT

#include <limits>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Foundation/NSException.h>
#include <KXFoundation/Platform/Foundation/NSKeyedArchiver.h>
#include <KXFoundation/Platform/Foundation/NSKeyedUnarchiver.h>
#include <KXFoundation/Platform/Foundation/PropertyList.h>

namespace kx {
namespace {

class Harbour : public Subclass<Harbour, NSObject>, public NSSecureCoding {
  public:
    std::string name;
    Value freight;
    std::weak_ptr<Harbour> across;

    void encodeWithCoder(NSCoder& coder) const override {
        coder.encode("$class", name);  // a key that the layout has too
        coder.encode("freight", freight);
        coder.encode("across", Value(across.lock()));
        coder.encode("berths", 12);
    }
    bool initWithCoder(NSCoder& coder) override {
        if (coder.decodeString("$class") == "throws") throw NSException("NSInvalid", "no such harbour");
        name = coder.decodeString("$class").value_or("?");
        freight = coder.decode("freight");
        across = objectCast<Harbour>(coder.decode("across").asObject());
        return coder.decodeInteger("berths") == 12;
    }
    bool isEqual(const NSObject& other) const override {
        return &isa() == &other.isa() && name == static_cast<const Harbour&>(other).name &&
               freight == static_cast<const Harbour&>(other).freight;
    }
};
class IslandHarbour : public Subclass<IslandHarbour, Harbour> {};
class NeverRegistered : public Subclass<NeverRegistered, Harbour> {};
class Ordinary : public Subclass<Ordinary, NSObject> {};

template <class T = Harbour>
Value harbour(std::string name, Value freight = {}) {
    const auto made = make<T>();
    made->name = std::move(name);
    made->freight = std::move(freight);
    return Value(made);
}

Value array(std::initializer_list<Value> items) {
    ArrayBuilder builder;
    for (const Value& item : items) builder.add(item);
    return builder.build();
}

Value nested(std::size_t levels) {
    Value value(1);
    for (std::size_t i = 0; i < levels; ++i) value = array({value});
    return value;
}

Result<Value> read(const std::string& archive) {
    return NSKeyedUnarchiver::unarchivedObject(std::as_bytes(std::span(archive)));
}
Result<Value> read(const ArchivedClass& cls, const std::string& archive) {
    return NSKeyedUnarchiver::unarchivedObjectOfClass(cls, std::as_bytes(std::span(archive)));
}
std::string written(const Value& value) {
    auto archive = NSKeyedArchiver::archivedDataWithRootObject(value);
    EXPECT_TRUE(archive.ok()) << archive.error().message();
    return archive ? std::move(*archive) : "";
}

struct NSKeyedArchiverTest : ::testing::Test {
    NSKeyedArchiverTest() {
        registerSecureCoding<Harbour>();
        registerSecureCoding<IslandHarbour>();
    }
};

TEST_F(NSKeyedArchiverTest, WhatGoesInComesOutEqual) {
    const std::string zeros("a\0b", 3);
    const std::string notUtf8 = "caf\xE9";
    const Value rows[] = {
        // Scalars.
        nullptr, true, 0, std::numeric_limits<std::int64_t>::min(), 0.1, Value(2.0), Value::date(-0.25),
        // Texts and bytes.
        "", "海港", zeros, notUtf8, std::string(200'000, 'x'), Value::data(std::vector<std::byte>{}),
        Value::data(std::as_bytes(std::span(zeros))),
        // What holds others.
        array({}), array({nullptr, 1, "1", true, array({"1"})}), DictionaryBuilder().build(),
        DictionaryBuilder().set("$class", 1).set(notUtf8, "x").set(zeros, nullptr).build(),
        nested(Value::kMaxDepth),
        harbour("Kiel", array({harbour<IslandHarbour>("Texel", notUtf8), "$null"}))};
    for (const Value& row : rows) {
        const auto back = read(written(row));
        ASSERT_TRUE(back.ok()) << row.description() << ": " << back.error().message();
        EXPECT_EQ(*back, row) << row.description();
        EXPECT_EQ(back->type(), row.type()) << row.description();
    }
}

TEST_F(NSKeyedArchiverTest, KeepsIdentityAndCircles) {
    const auto one = make<Harbour>();
    const auto other = make<Harbour>();
    one->across = other;
    other->across = one;
    const auto back = read(written(array({Value(one), Value(other), Value(one)})));
    ASSERT_TRUE(back.ok());
    const auto items = back->elements();
    const auto first = objectCast<Harbour>(items[0].asObject());
    EXPECT_EQ(first, items[2].asObject());
    EXPECT_EQ(first->across.lock(), items[1].asObject());
    EXPECT_EQ(first->across.lock()->across.lock(), first);
}

TEST_F(NSKeyedArchiverTest, RefusesWhatCannotBeArchived) {
    Value wide = array({1, 2});
    for (int i = 0; i < 40; ++i) wide = array({wide, wide});  // small, but endless when written out
    const std::pair<Value, ErrorKind> rows[] = {
        {Value::uid(1), ErrorKind::Unsupported},
        {Value(make<Ordinary>()), ErrorKind::Unsupported},
        {array({harbour("x", Value(make<Ordinary>()))}), ErrorKind::Unsupported},
        {nested(Value::kMaxDepth + 1), ErrorKind::TooLarge},
        {wide, ErrorKind::TooLarge},
    };
    for (const auto& [value, kind] : rows) {
        const auto archive = NSKeyedArchiver::archivedDataWithRootObject(value);
        ASSERT_FALSE(archive.ok()) << value.description();
        EXPECT_EQ(archive.error().kind, kind) << value.description();
    }
}

TEST_F(NSKeyedArchiverTest, TheRootMustBeOfTheClassAskedFor) {
    const Value island = harbour<IslandHarbour>("Texel");
    const std::tuple<Value, ArchivedClass, bool> rows[] = {
        {"", ValueClass::NSString, true},
        {"caf\xE9", ValueClass::NSString, true},
        {"1", ValueClass::NSNumber, false},
        {1, ValueClass::NSNumber, true},
        {true, ValueClass::NSNumber, true},
        {array({1}), ValueClass::NSArray, true},
        {array({1}), ValueClass::NSDictionary, false},
        {"x", NSObject::classObject(), false},
        {island, IslandHarbour::classObject(), true},
        {island, Harbour::classObject(), true},
        {island, ValueClass::NSString, false},
        {harbour("Kiel"), IslandHarbour::classObject(), false},
        {harbour<NeverRegistered>("Lost"), NeverRegistered::classObject(), true},  // asked for by name
        {harbour<NeverRegistered>("Lost"), Harbour::classObject(), false},
        {harbour("Kiel", harbour<NeverRegistered>("Lost")), Harbour::classObject(), false},
        {harbour("throws"), ValueClass::NSString, false},  // nothing is made of the wrong class
    };
    for (const auto& [value, cls, expected] : rows)
        EXPECT_EQ(read(cls, written(value)).ok(), expected) << value.description();
    EXPECT_THROW(static_cast<void>(read(written(harbour("throws")))), NSException);
}

Value uids(std::initializer_list<std::uint32_t> numbers) {
    ArrayBuilder builder;
    for (const std::uint32_t number : numbers) builder.add(Value::uid(number));
    return builder.build();
}
Value named(std::string_view name) {
    return DictionaryBuilder().set("$classname", name).build();
}
Value arrayOf(std::uint32_t cls, const Value& items) {
    return DictionaryBuilder().set("$class", Value::uid(cls)).set("NS.objects", items).build();
}
/// An archive by hand: entry 0 is null, entry 1 the class, entry 2 the root.
std::string handmade(std::string_view className, std::initializer_list<Value> entries) {
    ArrayBuilder objects;
    objects.add("$null").add(named(className));
    for (const Value& entry : entries) objects.add(entry);
    const Value list = DictionaryBuilder()
                           .set("$archiver", "NSKeyedArchiver")
                           .set("$version", 100'000)
                           .set("$top", DictionaryBuilder().set("root", Value::uid(2)).build())
                           .set("$objects", objects.build())
                           .build();
    return *writeXmlPropertyList(list);
}

TEST_F(NSKeyedArchiverTest, ReadsForeignArchives) {
    const Value text = DictionaryBuilder().set("$class", Value::uid(1)).set("NS.string", "Kiel").build();
    EXPECT_EQ(*read(handmade("NSMutableString", {text})), Value("Kiel"));
    EXPECT_EQ(*read(handmade("NSMutableArray", {arrayOf(1, uids({0, 3, 3})), 7})), array({nullptr, 7, 7}));
}

TEST_F(NSKeyedArchiverTest, RefusesHostileArchives) {
    const Value harbourOf2 =
        DictionaryBuilder().set("$class", Value::uid(1)).set("across", Value::uid(2)).build();
    const std::tuple<std::string_view, std::string, ErrorKind> rows[] = {
        {"nothing", "", ErrorKind::Ended},
        {"another list", *writeXmlPropertyList(array({1})), ErrorKind::Corrupt},
        {"no root", handmade("NSArray", {}), ErrorKind::Corrupt},
        {"contains itself", handmade("NSArray", {arrayOf(1, uids({2}))}), ErrorKind::Corrupt},
        {"refers nowhere", handmade("NSArray", {arrayOf(1, uids({9}))}), ErrorKind::Corrupt},
        {"no class there", handmade("NSArray", {arrayOf(0, uids({}))}), ErrorKind::Corrupt},
        {"items that are no numbers", handmade("NSArray", {arrayOf(1, array({"x"}))}), ErrorKind::Corrupt},
        {"unknown class", handmade("Nobody", {arrayOf(1, uids({}))}), ErrorKind::Unsupported},
        {"class without coding", handmade("Ordinary", {arrayOf(1, uids({}))}), ErrorKind::Unsupported},
        {"the root of all", handmade("NSObject", {arrayOf(1, uids({}))}), ErrorKind::Unsupported},
        {"refused by its class", handmade("Harbour", {harbourOf2}), ErrorKind::Corrupt},
    };
    for (const auto& [what, archive, kind] : rows) {
        const auto back = read(archive);
        ASSERT_FALSE(back.ok()) << what;
        EXPECT_EQ(back.error().kind, kind) << what << ": " << back.error().message();
    }
}

/// The inner arrays are read first, each well within the depth; together they are a chain without end.
TEST_F(NSKeyedArchiverTest, CountsTheDepthOfWhatIsSharedToo) {
    constexpr std::uint32_t kLinks = 3000;
    ArrayBuilder all;
    for (std::uint32_t i = kLinks; i-- > 0;) all.add(Value::uid(3 + i));
    ArrayBuilder objects;
    objects.add("$null").add(named("NSArray")).add(arrayOf(1, all.build()));
    for (std::uint32_t i = 0; i < kLinks; ++i)
        objects.add(arrayOf(1, i + 1 < kLinks ? uids({4 + i}) : uids({})));
    const auto archive =
        writeBinaryPropertyList(DictionaryBuilder()
                                    .set("$archiver", "NSKeyedArchiver")
                                    .set("$version", 100'000)
                                    .set("$top", DictionaryBuilder().set("root", Value::uid(2)).build())
                                    .set("$objects", objects.build())
                                    .build());
    EXPECT_EQ(read(*archive).error().kind, ErrorKind::TooLarge);
}

}  // namespace
}  // namespace kx
