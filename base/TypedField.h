#ifndef ORVANE_BASE_TYPEDFIELD_H
#define ORVANE_BASE_TYPEDFIELD_H

#include "base/FieldType.h"
#include "base/ValueText.h"
#include "base/XField.h"

#include <cstring>

namespace Orvane {

// What every concrete field class shares: its type record and the text form of its element
// type. A concrete class only names its element type, its storage and its FieldType, and
// overrides what is special about it.

template <class Self, class Base>
class ORVANE_API TypedField : public Base {
public:
    using Base::Base;
    using Field::setValueByStr;
    using Field::setValueByBin;

    NodePartDataType   dataType() const override { return Self::DataType; }
    const std::string& dataTypeName() const override { return fieldType().dataTypeName(); }

    static const FieldType& fieldType() { return *FieldType::findType(Self::DataType); }
    static void             init() {}

protected:
    static const char* textEnd(const char* text) { return text + std::strlen(text); }
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
