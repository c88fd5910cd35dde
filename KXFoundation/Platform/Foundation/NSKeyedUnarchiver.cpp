// SPDX-License-Identifier: MIT

#include <string>
#include <utility>
#include <vector>

#include <KXFoundation/Platform/Foundation/KeyedArchiveLayout.h>
#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Foundation/NSKeyedUnarchiver.h>
#include <KXFoundation/Platform/Foundation/PropertyList.h>

namespace kx {

using namespace archive;

namespace {

constexpr std::pair<std::string_view, ValueClass> kValueClasses[] = {
    {"NSNull", ValueClass::NSNull},
    {"NSString", ValueClass::NSString},
    {"NSMutableString", ValueClass::NSString},
    {"NSDate", ValueClass::NSDate},
    {"NSData", ValueClass::NSData},
    {"NSMutableData", ValueClass::NSData},
    {"NSArray", ValueClass::NSArray},
    {"NSMutableArray", ValueClass::NSArray},
    {"NSDictionary", ValueClass::NSDictionary},
    {"NSMutableDictionary", ValueClass::NSDictionary},
};

Error corrupt() {
    return error(ErrorKind::Corrupt);
}

/// The class of what stands in the table as it is; such a thing is no container.
Result<ValueClass> plainClass(const Value& value) {
    switch (value.type()) {
        case Value::Type::Boolean:
        case Value::Type::Integer:
        case Value::Type::Real:
            return ValueClass::NSNumber;
        case Value::Type::String:
            return ValueClass::NSString;
        case Value::Type::Data:
            return ValueClass::NSData;
        case Value::Type::Date:
            return ValueClass::NSDate;
        default:
            return corrupt();
    }
}

class Unarchiver {
  public:
    /// `asked` may be nullptr.
    Unarchiver(const Value& list, const ArchivedClass* asked)
        : objects_(list[kObjects].elements()), asked_(asked), entries_(objects_.size()) {}

    Result<Value> root(std::uint32_t number) {
        if (asked_) {
            if (auto checked = checkRoot(number); !checked) return std::move(checked).error();
        }
        auto entry = object(number, 0);
        if (!entry) return std::move(entry).error();
        return (*entry)->value;
    }

  private:
    struct Entry {
        enum class State : std::uint8_t { Unread, BeingRead, Read } state = State::Unread;
        Extent extent;
        Value value;  // an object's is there while it is being read
    };
    using Found = Result<const Entry*>;
    using Read = Result<void>;

    struct Described {
        const Value* members;
        std::string_view className;
    };

    /// The dictionary in the table with the name of its class.
    Result<Described> described(const Value& raw) const {
        const auto cls = raw[kClass].asUid();
        if (!cls || *cls >= objects_.size()) return corrupt();
        const auto name = objects_[*cls][kClassName].asString();
        if (!name) return corrupt();
        return Described{&raw, *name};
    }

    static const std::pair<std::string_view, ValueClass>* valueClassNamed(std::string_view name) {
        const auto found =
            std::ranges::find(kValueClasses, name, &std::pair<std::string_view, ValueClass>::first);
        return found == std::end(kValueClasses) ? nullptr : found;
    }

    [[nodiscard]] bool isNull(std::uint32_t number) const {
        return number == 0 && objects_[0].asString() == kNull;
    }

    Read checkRoot(std::uint32_t number) const {
        if (number >= objects_.size()) return corrupt();
        const Value& raw = objects_[number];
        if (isNull(number)) return checkClass(ValueClass::NSNull);
        if (raw.type() != Value::Type::Dictionary) {
            const auto cls = plainClass(raw);
            return cls ? checkClass(*cls) : Read(cls.error());
        }
        const auto what = described(raw);
        if (!what) return what.error();
        if (const auto* known = valueClassNamed(what->className)) return checkClass(known->second);
        const Class* cls = Class::named(what->className);
        if (cls && asked_->objectClass() && cls->isSubclassOf(*asked_->objectClass())) return {};
        return otherClass(what->className);
    }

    [[nodiscard]] Read checkClass(ValueClass found) const {
        if (!asked_->objectClass() && asked_->valueClass() == found) return {};
        return otherClass("a value");
    }

    static Error otherClass(std::string_view found) {
        return error(ErrorKind::Unsupported, std::string(found) + " is not of the class asked for");
    }

    Found object(std::uint32_t number, std::size_t depth) {
        if (number >= objects_.size()) return corrupt();
        Entry& entry = entries_[number];
        if (entry.state == Entry::State::BeingRead && entry.value.isNull()) return corrupt();
        if (entry.state == Entry::State::Unread) {
            entry.state = Entry::State::BeingRead;
            if (auto read = readEntry(entry, number, depth); !read) return std::move(read).error();
            entry.state = Entry::State::Read;
        }
        if (!entry.extent.fits(depth)) return error(ErrorKind::TooLarge);
        return &entry;
    }

    Read readEntry(Entry& entry, std::uint32_t number, std::size_t depth) {
        const Value& raw = objects_[number];
        if (isNull(number)) return {};
        if (raw.type() != Value::Type::Dictionary) {
            if (auto cls = plainClass(raw); !cls) return std::move(cls).error();
            entry.value = raw;
            return {};
        }
        const auto what = described(raw);
        if (!what) return what.error();
        const auto* known = valueClassNamed(what->className);
        return known ? readValue(entry, known->second, raw, depth) : readObject(entry, *what, depth);
    }

    Read readValue(Entry& entry, ValueClass cls, const Value& raw, std::size_t depth) {
        switch (cls) {
            case ValueClass::NSArray:
                return readArray(entry, raw, depth);
            case ValueClass::NSDictionary:
                return readDictionary(entry, raw, depth);
            case ValueClass::NSDate:
                if (!raw[kTime].asReal()) return corrupt();
                entry.value = Value::date(*raw[kTime].asReal());
                return {};
            case ValueClass::NSString:
                return readText(entry, raw);
            case ValueClass::NSData:
                if (!raw[kData].asData()) return corrupt();
                entry.value = raw[kData];
                return {};
            case ValueClass::NSNull:
            case ValueClass::NSNumber:
                break;
        }
        return {};
    }

    static Read readText(Entry& entry, const Value& raw) {
        if (raw[kText].asString()) {
            entry.value = raw[kText];
            return {};
        }
        const auto bytes = raw[kTextBytes].asData();
        if (!bytes) return corrupt();
        entry.value = std::string_view(reinterpret_cast<const char*>(bytes->data()), bytes->size());
        return {};
    }

    Read readArray(Entry& entry, const Value& raw, std::size_t depth) {
        if (raw[kItems].type() != Value::Type::Array) return corrupt();
        ArrayBuilder builder;
        builder.reserve(raw[kItems].elements().size());
        entry.extent = Extent::container();
        for (const Value& item : raw[kItems].elements()) {
            auto found = part(entry, item, depth);
            if (!found) return std::move(found).error();
            builder.add(std::move(*found));
        }
        entry.value = builder.build();
        return {};
    }

    Read readDictionary(Entry& entry, const Value& raw, std::size_t depth) {
        const auto keys = raw[kKeys].elements();
        const auto items = raw[kItems].elements();
        if (keys.size() != items.size()) return corrupt();
        DictionaryBuilder builder;
        entry.extent = Extent::container();
        for (std::size_t i = 0; i < keys.size(); ++i) {
            const auto key = part(entry, keys[i], depth);
            if (!key) return key.error();
            if (!key->asString()) return error(ErrorKind::Unsupported, "a key that is no text");
            auto item = part(entry, items[i], depth);
            if (!item) return std::move(item).error();
            builder.set(*key->asString(), std::move(*item));
        }
        entry.value = builder.build();
        return {};
    }

    Read readObject(Entry& entry, const Described& what, std::size_t depth) {
        const std::string name(what.className);
        const Class* cls = Class::named(name);
        const bool allowed = cls && (isSecureCodingClass(*cls) || (asked_ && asked_->objectClass() == cls));
        const auto made = allowed ? cls->allocate() : nullptr;
        auto* coding = dynamic_cast<NSSecureCoding*>(made.get());
        if (!coding) return error(ErrorKind::Unsupported, name + " is not registered");
        entry.value = made;
        entry.extent = Extent::container();
        DictionaryBuilder own;
        for (const auto& [key, item] : what.members->members()) {
            if (key == kClass) continue;
            auto member = item.asUid() ? part(entry, item, depth) : plain(item);
            if (!member) return std::move(member).error();
            own.set(key.starts_with("$") ? key.substr(1) : key, std::move(*member));
        }
        entry.extent.elements = 1;
        NSCoder coder(own.build());
        if (!coding->initWithCoder(coder)) return error(ErrorKind::Corrupt, name + " refused its contents");
        return {};
    }

    static Result<Value> plain(const Value& item) {
        if (auto cls = plainClass(item); !cls) return std::move(cls).error();
        return item;
    }

    /// What `owner`, at this depth, refers to.
    Result<Value> part(Entry& owner, const Value& reference, std::size_t depth) {
        const auto number = reference.asUid();
        if (!number) return corrupt();
        if (!Extent::container().fits(depth)) return error(ErrorKind::TooLarge);
        auto found = object(*number, depth + 1);
        if (!found) return std::move(found).error();
        owner.extent.include((*found)->extent);
        if (!owner.extent.fits(depth)) return error(ErrorKind::TooLarge);
        return (*found)->value;
    }

    std::span<const Value> objects_;
    const ArchivedClass* asked_;
    std::vector<Entry> entries_;
};

Result<Value> unarchived(const ArchivedClass* asked, std::span<const std::byte> archive) {
    const auto list = readPropertyList(archive);
    if (!list) return list.error();
    const auto root = (*list)[kTop][kRoot].asUid();
    if ((*list)[kArchiverKey].asString() != kArchiver || (*list)[kVersionKey].asInteger() != kVersion ||
        !root)
        return error(ErrorKind::Corrupt, "no such layout");
    return Unarchiver(*list, asked).root(*root);
}

}  // namespace

Result<Value> NSKeyedUnarchiver::unarchivedObjectOfClass(const ArchivedClass& cls,
                                                         std::span<const std::byte> archive) {
    return unarchived(&cls, archive);
}

Result<Value> NSKeyedUnarchiver::unarchivedObject(std::span<const std::byte> archive) {
    return unarchived(nullptr, archive);
}

}  // namespace kx
