#ifndef ORVANE_BASE_XFIELD_H
#define ORVANE_BASE_XFIELD_H

#include "base/Field.h"
#include "base/Log.h"

#include <algorithm>
#include <iterator>
#include <list>
#include <utility>
#include <vector>

namespace Orvane {

// The storage levels of the fields: XField holds a value, SField adds single-value behaviour,
// MField multi-value behaviour for a container, MVField and MLField the element operations of
// vector and list storage. The tag is 1 only for the node-link instantiations.

template <class T, int tag = 0>
class ORVANE_API XField : public Field {
public:
    using ValueType = T;
    // The timed setter of Field, which the slot override below would hide otherwise.
    using Field::setValueByField;

    explicit XField(Node& owner) : Field(owner), _value() {}
    XField(Node& owner, const T& value) : Field(owner), _value(value) {}
    XField(const XField& other) : Field(other), _value(other._value) {}
    XField& operator=(const XField& other)
    {
        _value = other._value;
        return *this;
    }

    T&       value() { return _value; }
    const T& value() const { return _value; }

    void setValue(const T& value) { _value = value; }
    void setValue(const double& time, const T& value, CallerType callerType = FieldCaller)
    {
        _value = value;
        processValueChange(time, callerType);
    }

    bool equalValue(const Field& other) const override
    {
        // The same field type first, without the type-name comparison of a cross-library cast.
        if (other.dataType() == this->dataType())
            return _value == static_cast<const XField&>(other)._value;
        if (auto same = dynamic_cast<const XField*>(&other))
            return _value == same->_value;
        ORV_FATAL("Type mismatch in XField::opperator==\n");
        return false;
    }

protected:
    virtual void addValueFieldDep(const T& values, bool replace) = 0;

    // The same field type holds the same storage: a plain copy. Asking the type rather than
    // dynamic_cast keeps this cheap across library boundaries, where a failed cast compares
    // type names. Other types, also those sharing the storage (SFDouble, SFTime), convert.
    bool setValueByField(const Field& from, ConvertParam* param) override
    {
        if (from.dataType() == this->dataType()) {
            if (&from != this)
                _value = static_cast<const XField&>(from)._value;
            return true;
        }
        return Field::assign(*this, from, param);
    }

    T _value;
};

template <class T, int tag = 0>
class ORVANE_API SField : public XField<T, 0> {
    using Base = XField<T, 0>;

public:
    using Base::Base;
    using Field::setValueByStr;
    using Field::setValueByBin;
    using Field::Cardinality;

    Field::Cardinality cardinality() const override { return Field::Single; }
    unsigned int       size() const override { return 1; }
    bool               empty() const override { return false; }
    void               resize(unsigned int) override {}
    void               reserve(unsigned int) override {}
    void               clear() override {}
    void               free() override {}

    std::string get1ValueAsBin(int) override { return this->getBinValue(0); }
    void        set1ValueByBin(int, const std::string& data) override { this->setValueByBin(data); }
    const char* addValueByStr(const char* text, Field::Cardinality) override
    {
        this->setValueByStr(text);
        return nullptr;
    }

protected:
    void addValueFieldDep(const T&, bool) override {}
};

template <class Container, int tag = 0>
class ORVANE_API MField : public XField<Container, tag> {
    using Base = XField<Container, tag>;

public:
    using Base::Base;
    using Field::setValueByStr;
    using Field::setValueByBin;
    using Element = typename Container::value_type;
    using iterator = typename Container::iterator;
    using const_iterator = typename Container::const_iterator;

    Field::Cardinality cardinality() const override { return Field::Multi; }
    unsigned int       size() const override { return static_cast<unsigned int>(this->_value.size()); }
    bool               empty() const override { return this->_value.empty(); }
    void               clear() override { this->_value.clear(); }
    void               free() override { Container().swap(this->_value); }
    void               resize(unsigned int count) override { this->_value.resize(count); }

    iterator       begin() { return this->_value.begin(); }
    iterator       end() { return this->_value.end(); }
    const_iterator begin() const { return this->_value.begin(); }
    const_iterator end() const { return this->_value.end(); }
    Element&       front() { return this->_value.front(); }
    Element&       back() { return this->_value.back(); }
    const Element& front() const { return this->_value.front(); }
    const Element& back() const { return this->_value.back(); }

    Element* addValue(const Element& value)
    {
        this->_value.push_back(value);
        return &this->_value.back();
    }
    Element* insertValue(int index, const Element& value)
    {
        if (index < 0 || index == static_cast<int>(this->_value.size()))
            return addValue(value);
        return &*this->_value.insert(at(index), value);
    }
    void removeValueByIndex(int index)
    {
        if (index != static_cast<int>(this->_value.size()))
            this->_value.erase(at(index));
    }
    void removeValue(const Element& value)
    {
        auto& c = this->_value;
        c.erase(std::remove(c.begin(), c.end(), value), c.end());
    }

protected:
    void addValueFieldDep(const Container& values, bool replace) override
    {
        if (replace) {
            this->_value.resize(values.size());
            std::copy(values.begin(), values.end(), this->_value.begin());
        } else {
            this->_value.insert(this->_value.end(), values.begin(), values.end());
        }
    }

    // The position of an element: direct for vectors; a walk for lists, from the back for a
    // negative index.
    iterator at(int index)
    {
        if constexpr (std::is_same_v<typename std::iterator_traits<iterator>::iterator_category,
                                     std::random_access_iterator_tag>) {
            return this->_value.begin() + index;
        } else if (index < 0) {
            return std::prev(this->_value.end(), -index);
        } else {
            return std::next(this->_value.begin(), index);
        }
    }
    const_iterator at(int index) const { return const_cast<MField*>(this)->at(index); }
};

template <class T, int tag = 0>
class ORVANE_API MVField : public MField<std::vector<T>, tag> {
    using Base = MField<std::vector<T>, tag>;

public:
    using Base::Base;

    void     reserve(unsigned int count) override { this->_value.reserve(count); }
    void     setElem(int index, const T& value) { this->_value[index] = value; }
    T&       elem(int index) { return this->_value[index]; }
    const T& elem(int index) const { return this->_value[index]; }
    std::size_t capacity() const { return this->_value.capacity(); }
};

template <class T, int tag = 0>
class ORVANE_API MLField : public MField<std::list<T>, tag> {
    using Base = MField<std::list<T>, tag>;

public:
    using Base::Base;

    void     reserve(unsigned int) override {}
    void     setElem(int index, const T& value) { *this->at(index) = value; }
    T&       elem(int index) { return *this->at(index); }
    const T& elem(int index) const { return *this->at(index); }
};

} // namespace Orvane

#endif
