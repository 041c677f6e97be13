#ifndef ORVANE_BASE_TYPEDFIELD_H
#define ORVANE_BASE_TYPEDFIELD_H

#include "base/FieldType.h"
#include "base/ValueBinary.h"
#include "base/ValueText.h"
#include "base/XField.h"

#include <cstring>

namespace Orvane {

// The element type of a storage level: the value of a single-value field, the container's
// element of a multi-value one.
template <class Base>
struct StoredElement {
    using type = typename Base::ValueType;
    static constexpr bool multi = false;
};
template <class Base>
    requires requires { typename Base::Element; }
struct StoredElement<Base> {
    using type = typename Base::Element;
    static constexpr bool multi = true;
};

// What every concrete field class shares: its type record, the text form of its element type
// and the binary form. A concrete class only names its element type, its storage and its
// FieldType, and overrides what is special about it.
//
// The binary form is that of the element type (ValueBinary), unless the class declares
// `static constexpr bool binaryForm = false;`: then every binary operation logs
// "<class>::<operation>() is not imp" and changes nothing. Classes whose element type has
// no binary form refuse as well.
template <class Self, class Base>
class ORVANE_API TypedField : public Base {
    using Stored = typename StoredElement<Base>::type;
    static constexpr bool multi = StoredElement<Base>::multi;

public:
    using Base::Base;
    using Field::setValueByStr;
    using Field::setValueByBin;

    NodePartDataType   dataType() const override { return Self::DataType; }
    const std::string& dataTypeName() const override { return fieldType().dataTypeName(); }

    static const FieldType& fieldType() { return *FieldType::findType(Self::DataType); }
    static void             init() {}

    std::string getBinValue(int = 0) override
    {
        if constexpr (!hasBinaryForm()) {
            this->binaryNotImplemented("getBinValue");
            return std::string();
        } else if constexpr (multi) {
            return FieldBinary<Stored>::encodeList(this->_value, className());
        } else {
            return FieldBinary<Stored>::encodeOne(this->_value, className());
        }
    }
    using Field::getBinValue;

    // One element alone, without a count; an index outside the field gives nothing.
    std::string get1ValueAsBin(int index) override
    {
        if constexpr (!hasBinaryForm()) {
            this->binaryNotImplemented("get1ValueByBin");
            return std::string();
        } else if constexpr (multi) {
            if (!inRange(index))
                return std::string();
            return FieldBinary<Stored>::encodeOne(this->elem(index), className());
        } else {
            return getBinValue(0);
        }
    }

    void set1ValueByBin(int index, const std::string& data) override
    {
        if constexpr (!hasBinaryForm()) {
            this->binaryNotImplemented("set1ValueByBin");
        } else if constexpr (multi) {
            if (inRange(index))
                FieldBinary<Stored>::decodeOne(data, this->elem(index), className());
        } else {
            setValueByBin(data);
        }
    }

protected:
    static const char* textEnd(const char* text) { return text + std::strlen(text); }

    void setValueByBin(const std::string& data) override
    {
        if constexpr (!hasBinaryForm()) {
            this->binaryNotImplemented("setValueByBin");
        } else if constexpr (multi) {
            FieldBinary<Stored>::decodeList(data, this->_value, className());
        } else {
            FieldBinary<Stored>::decodeOne(data, this->_value, className());
        }
    }

private:
    // Asked only inside the operations, where Self is complete.
    static constexpr bool hasBinaryForm()
    {
        if constexpr (requires { Self::binaryForm; }) {
            static_assert(!Self::binaryForm || ValueBinary<Stored>::supported, "element type has no binary form");
            return Self::binaryForm;
        } else {
            return ValueBinary<Stored>::supported;
        }
    }
    const char* className() const { return this->dataTypeName().c_str(); }
    bool        inRange(int index) const { return index >= 0 && static_cast<unsigned>(index) < this->size(); }
};

template <class Self, class T, class Base = SField<T>>
class ORVANE_API TypedSField : public TypedField<Self, Base> {
    using Typed = TypedField<Self, Base>;

public:
    using Typed::Typed;
    using Field::setValueByStr;
    TypedSField(Node& owner, const Self& other) : Typed(owner, other.value()) {}

    std::string& getStrValue(std::string& out) const override
    {
        out.clear();
        ValueText<T>::writeSF(out, this->_value);
        return out;
    }

protected:
    void setValueByStr(const char* text) override
    {
        if (!text)
            text = "";
        ValueText<T>::readSF(text, this->textEnd(text), this->_value);
    }
};

template <class Self, class T, class Base = MVField<T>>
class ORVANE_API TypedMField : public TypedField<Self, Base> {
    using Typed = TypedField<Self, Base>;

public:
    using Typed::Typed;
    using Field::setValueByStr;
    TypedMField(Node& owner, const Self& other) : Typed(owner, other.value()) {}

    std::string& getStrValue(std::string& out) const override
    {
        out.clear();
        writeList<T>(out, this->_value);
        return out;
    }

    // A fragment (Multi) appends every number of the text; a complete run (Single) one element.
    const char* addValueByStr(const char* text, Field::Cardinality cardinality) override
    {
        if (!text)
            return nullptr;
        const char* last = this->textEnd(text);
        if (cardinality == Field::Multi) {
            ValueText<T>::readList(text, last, this->_value, fragmentSeparators);
            return nullptr;
        }
        T element{};
        const char* end = ValueText<T>::readOne(text, last, element);
        this->_value.push_back(element);
        return end < last ? end : nullptr;
    }

protected:
    // For the classes that read complete elements only: a fragment is refused and dropped.
    const char* addCompleteValueByStr(const char* text, Field::Cardinality cardinality)
    {
        if (cardinality == Field::Multi) {
            ORV_FATAL("%s::addValueByStr() for partial data not impl.\n", this->dataTypeName().c_str());
            return nullptr;
        }
        return TypedMField::addValueByStr(text, cardinality);
    }

    void setValueByStr(const char* text) override
    {
        this->_value.clear();
        if (text)
            ValueText<T>::readList(text, this->textEnd(text), this->_value, valueSeparators);
    }
};

// Values without a text form (opaque pointers, events without a value): the text is empty
// and text input is ignored.
template <class Self, class Base>
class ORVANE_API OpaqueField : public TypedField<Self, Base> {
    using Typed = TypedField<Self, Base>;

public:
    using Typed::Typed;
    using Field::setValueByStr;

    std::string& getStrValue(std::string& out) const override
    {
        out.clear();
        return out;
    }
    const char* addValueByStr(const char*, Field::Cardinality) override { return nullptr; }

protected:
    void setValueByStr(const char*) override {}
};

} // namespace Orvane

#endif
