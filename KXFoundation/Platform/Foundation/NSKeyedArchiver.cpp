// SPDX-License-Identifier: MIT

#include <cstdint>
#include <map>
#include <span>
#include <unordered_map>
#include <vector>

#include <KXFoundation/Platform/Foundation/KeyedArchiveLayout.h>
#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Foundation/NSKeyedArchiver.h>
#include <KXFoundation/Platform/Foundation/NSSecureCoding.h>
#include <KXFoundation/Platform/Foundation/PropertyList.h>
#include <KXFoundation/Platform/Foundation/Utf8Validation.h>

namespace kx {

using namespace archive;

namespace {

using Number = std::uint32_t;
using Numbered = Result<Number>;

class Archiver {
  public:
    Result<std::string> archive(const Value& root) {
        append(kNull);
        const auto number = add(root, 0);
        if (!number) return number.error();
        ArrayBuilder objects;
        objects.reserve(entries_.size());
        for (Entry& entry : entries_) objects.add(std::move(entry.value));
        return writeBinaryPropertyList(
            DictionaryBuilder()
                .set(kArchiverKey, kArchiver)
                .set(kVersionKey, kVersion)
                .set(kTop, DictionaryBuilder().set(kRoot, Value::uid(*number)).build())
                .set(kObjects, objects.build())
                .build());
    }

  private:
    struct Entry {
        Value value;
        Extent extent;
    };
    /// Something that is named again by the same number. Keeping it keeps its address from being used anew.
    struct Known {
        Value value;
        Number number;
    };

    Number append(Value value, Extent extent = {}) {
        entries_.push_back({std::move(value), extent});
        return static_cast<Number>(entries_.size() - 1);
    }

    Numbered add(const Value& value, std::size_t depth) {
        switch (value.type()) {
            case Value::Type::Null:
                return null();
            case Value::Type::Boolean:
            case Value::Type::Integer:
            case Value::Type::Real:
                return append(value);
            case Value::Type::Date:
                return append(started("NSDate").set(kTime, *value.asDate()).build());
            case Value::Type::String:
                return text(*value.asString(), value);
            case Value::Type::Data:
                return shared(value, value.asData()->data(), depth, [&] { return Numbered(append(value)); });
            case Value::Type::Array:
                return shared(value, value.elements().data(), depth, [&] { return array(value, depth); });
            case Value::Type::Dictionary:
                return shared(value, value.members().data(), depth, [&] { return dictionary(value, depth); });
            case Value::Type::Object:
                return shared(value, value.asObject().get(), depth, [&] { return object(value, depth); });
            case Value::Type::Uid:
                break;
        }
        return error(ErrorKind::Unsupported, "a uid");
    }

    template <class Add>
    Numbered shared(const Value& value, const void* address, std::size_t depth, Add addNew) {
        const auto known = known_.find(address);
        if (known == known_.end()) {
            const Number next = static_cast<Number>(entries_.size());
            if (address) known_.emplace(address, Known{value, next});  // an empty container may have none
            return addNew();
        }
        const Number number = known->second.number;
        if (!entries_[number].extent.fits(depth)) return error(ErrorKind::TooLarge);
        return number;
    }

    Number null() {
        if (null_ == 0) null_ = append(started("NSNull").build());
        return null_;
    }

    Number text(std::string_view text, const Value& value) {
        if (const auto known = texts_.find(text); known != texts_.end()) return known->second;
        kept_.push_back(value);
        const Number number = isUtf8(text)
                                  ? append(value)
                                  : append(started("NSString")
                                               .set(kTextBytes, Value::data(std::as_bytes(std::span(text))))
                                               .build());
        texts_.emplace(*kept_.back().asString(), number);
        return number;
    }

    Numbered array(const Value& array, std::size_t depth) {
        const Number own = append({}, Extent::container());
        auto items = list(array.elements(), own, depth);
        if (!items) return std::move(items).error();
        entries_[own].value = started("NSArray").set(kItems, std::move(*items)).build();
        return own;
    }

    Numbered dictionary(const Value& dictionary, std::size_t depth) {
        const Number own = append({}, Extent::container());
        ArrayBuilder keys;
        std::vector<Value> items;
        for (const auto& [key, item] : dictionary.members()) {
            keys.add(Value::uid(text(key, key)));
            items.push_back(item);
        }
        auto numbers = list(items, own, depth);
        if (!numbers) return std::move(numbers).error();
        entries_[own].value =
            started("NSDictionary").set(kKeys, keys.build()).set(kItems, std::move(*numbers)).build();
        return own;
    }

    Numbered object(const Value& value, std::size_t depth) {
        const auto object = value.asObject();
        const auto* coding = dynamic_cast<const NSSecureCoding*>(object.get());
        if (!coding) return error(ErrorKind::Unsupported, object->className() + " has no secure coding");
        const Number own = append({}, Extent::container());
        NSCoder coder;
        coding->encodeWithCoder(coder);
        auto builder = started(object->isa());
        for (const auto& [key, item] : coder.archive().members()) {
            auto member = inlined(item, own, depth);
            if (!member) return std::move(member).error();
            builder.set(key.starts_with('$') ? '$' + key : key, std::move(*member));
        }
        entries_[own].extent.elements = 1;
        entries_[own].value = builder.build();
        return own;
    }

    Result<Value> inlined(const Value& item, Number owner, std::size_t depth) {
        if (item.asBoolean() || item.asReal()) return item;
        return part(item, owner, depth);
    }

    Result<Value> list(std::span<const Value> items, Number owner, std::size_t depth) {
        ArrayBuilder numbers;
        numbers.reserve(items.size());
        for (const Value& item : items) {
            auto number = part(item, owner, depth);
            if (!number) return std::move(number).error();
            numbers.add(std::move(*number));
        }
        return numbers.build();
    }

    /// The number of something that `owner`, at this depth, holds.
    Result<Value> part(const Value& item, Number owner, std::size_t depth) {
        if (!Extent::container().fits(depth)) return error(ErrorKind::TooLarge);
        const auto number = add(item, depth + 1);
        if (!number) return number.error();
        entries_[owner].extent.include(entries_[*number].extent);
        if (!entries_[owner].extent.fits(depth)) return error(ErrorKind::TooLarge);
        return Value::uid(*number);
    }

    DictionaryBuilder started(std::string_view className) {
        return started(className, [&] { return ArrayBuilder().add(className).add("NSObject").build(); });
    }
    DictionaryBuilder started(const Class& cls) {
        return started(cls.name(), [&] {
            ArrayBuilder names;
            for (const Class* each = &cls; each; each = each->superclass()) names.add(each->name());
            return names.build();
        });
    }
    template <class Names>
    DictionaryBuilder started(std::string_view className, Names names) {
        auto known = classes_.find(className);
        if (known == classes_.end()) {
            const Number number =
                append(DictionaryBuilder().set(kClassName, className).set(kClasses, names()).build());
            known = classes_.emplace(className, number).first;
        }
        return DictionaryBuilder().set(kClass, Value::uid(known->second));
    }

    std::vector<Entry> entries_;
    std::unordered_map<const void*, Known> known_;
    std::unordered_map<std::string_view, Number> texts_;  // views into kept_
    std::vector<Value> kept_;
    std::map<std::string, Number, std::less<>> classes_;
    Number null_ = 0;
};

}  // namespace

Result<std::string> NSKeyedArchiver::archivedDataWithRootObject(const Value& root) {
    return Archiver().archive(root);
}

}  // namespace kx
