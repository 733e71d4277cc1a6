#pragma once

#include <mutex>

// What a mutex guards is stated by these, and clang checks it. Other compilers can't.
#if defined(__clang__)
#define TARNEX_THREAD_SAFETY(attribute) __attribute__((attribute))
#else
#define TARNEX_THREAD_SAFETY(attribute)
#endif
#define TARNEX_GUARDED_BY(mutex) TARNEX_THREAD_SAFETY(guarded_by(mutex))

namespace Tarnex::Core {

/// A `std::mutex` that the check knows.
class TARNEX_THREAD_SAFETY(capability("mutex")) Mutex {
public:
    void lock() TARNEX_THREAD_SAFETY(acquire_capability()) { mutex.lock(); }
    void unlock() TARNEX_THREAD_SAFETY(release_capability()) { mutex.unlock(); }

private:
    std::mutex mutex;
};

/// Holds a mutex for its scope.
class TARNEX_THREAD_SAFETY(scoped_lockable) Lock {
public:
    explicit Lock(Mutex& mutex) TARNEX_THREAD_SAFETY(acquire_capability(mutex)) : mutex(mutex) {
        mutex.lock();
    }
    ~Lock() TARNEX_THREAD_SAFETY(release_capability()) { mutex.unlock(); }

    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    Mutex& mutex;
};

}  // namespace Tarnex::Core
