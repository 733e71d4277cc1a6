#pragma once

#include <atomic>
#include <boost/intrusive_ptr.hpp>

#include "core/Export.h"

namespace Tarnex::Proc {

/// A reference-counted media object. Create it with `new` and hold it by `Pointer`; the last
/// release deletes it. Any thread may change the count.
class TARNEX_TYPE IRefCountable {
public:
    virtual ~IRefCountable() = default;
    virtual int AddRef() const = 0;
    virtual int GetRefCount() const = 0;
    virtual int Release() const = 0;
};

inline void intrusive_ptr_add_ref(const IRefCountable* object) {
    object->AddRef();
}
inline void intrusive_ptr_release(const IRefCountable* object) {
    object->Release();
}

/// The reference count. Starts at 0.
class RefCountImpl {
public:
    int AddRefImpl() const { return ++count; }
    int GetRefCountImpl() const { return count; }
    int ReleaseImpl() const { return --count; }

private:
    mutable std::atomic<int> count = 0;
};

/// Implements the three counting operations of an interface.
template <class Interface>
class RefCounted : public Interface {
public:
    int AddRef() const override { return refCount.AddRefImpl(); }
    int GetRefCount() const override { return refCount.GetRefCountImpl(); }
    int Release() const override {
        const int left = refCount.ReleaseImpl();
        if (left == 0) {
            delete this;
        }
        return left;
    }

private:
    RefCountImpl refCount;
};

template <class T>
using Pointer = boost::intrusive_ptr<T>;

}  // namespace Tarnex::Proc
