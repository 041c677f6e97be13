#ifndef ORVANE_BASE_SMARTPTR_H
#define ORVANE_BASE_SMARTPTR_H

#include <utility>

namespace Orvane {

// Owning handle of a reference-counted object: holding a pointer is one reference.
template <class T>
class SmartPtr {
public:
    SmartPtr() = default;
    SmartPtr(T* object) : _object(object) { acquire(); }
    SmartPtr(const SmartPtr& other) : _object(other._object) { acquire(); }
    SmartPtr(SmartPtr&& other) noexcept : _object(std::exchange(other._object, nullptr)) {}
    ~SmartPtr() { drop(); }

    SmartPtr& operator=(const SmartPtr& other) { return *this = other._object; }
    SmartPtr& operator=(SmartPtr&& other) noexcept
    {
        if (this != &other) {
            T* old = std::exchange(_object, std::exchange(other._object, nullptr));
            if (old)
                old->subRef();
        }
        return *this;
    }
    SmartPtr& operator=(T* object)
    {
        if (object != _object) {
            // Take the new reference before dropping the old one: the old may own the new.
            T* old = std::exchange(_object, object);
            acquire();
            if (old)
                old->subRef();
        }
        return *this;
    }

    T* get() const { return _object; }
    T* operator->() const { return _object; }
    T& operator*() const { return *_object; }
    explicit operator bool() const { return _object != nullptr; }

    friend bool operator==(const SmartPtr& a, const SmartPtr& b) { return a._object == b._object; }
    friend bool operator==(const SmartPtr& a, const T* b) { return a._object == b; }

private:
    void acquire()
    {
        if (_object)
            _object->addRef();
    }
    void drop()
    {
        if (_object)
            std::exchange(_object, nullptr)->subRef();
    }

    T* _object = nullptr;
};

} // namespace Orvane

#endif
