// zun::ObjAppendList<T>: the program's growable array, and ObjAppendListP<T>,
// the same over owned pointers.
//
// The fields are public and read directly: data[i] is element i, count the
// slots in use, free the slots allocated and not in use. A growth adds at least
// `increment` slots; one made by appending adds at least as many as the list
// holds, so that a list filled one element at a time is filled in linear
// time. allocate(n) makes room for exactly what it is asked, to reserve a
// count known in advance. Trivially copyable element types live in a realloc'ed
// buffer whose free slots are zero-filled at each growth; other types (String)
// in a new[] array that is copied across.
#pragma once

#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

namespace zun {

template <class T>
class ObjAppendList {
public:
    long increment = 1;    // least number of free slots added by a growth
    T* data = nullptr;
    long count = 0;        // slots in use
    long free = 0;         // slots allocated and not in use

    explicit ObjAppendList(long n = 0, const T* init = nullptr) {
        if (n > 0) {
            allocate(n);
            if (init) append(n, init);
        }
    }
    ObjAppendList(const ObjAppendList& other) : increment(other.increment) {
        if (other.count > 0) append(other.count, other.data);
    }
    ObjAppendList(ObjAppendList&& other) noexcept
        : increment(other.increment), data(other.data), count(other.count), free(other.free) {
        other.data = nullptr;
        other.count = other.free = 0;
    }
    ObjAppendList& operator=(const ObjAppendList& other) {
        if (this != &other) {
            flush(false);
            increment = other.increment;
            if (other.count > 0) append(other.count, other.data);
        }
        return *this;
    }
    ObjAppendList& operator=(ObjAppendList&& other) noexcept {
        if (this != &other) {
            release();
            increment = other.increment;
            data = other.data;
            count = other.count;
            free = other.free;
            other.data = nullptr;
            other.count = other.free = 0;
        }
        return *this;
    }
    virtual ~ObjAppendList() { release(); }

    const T& operator[](long i) const { return data[i]; }
    T& operator[](long i) { return data[i]; }

    void setTruncSize(long n) { increment = n > 0 ? n : 1; }

    // Makes room for n more elements.
    void allocate(long n) {
        if (free >= n) return;
        long add = n - free;
        if (add < increment) add = increment;
        alloc(add, std::is_trivially_copyable<T>());
    }

    ObjAppendList& operator<<(const T& v) {
        if (free < 1) grow(1);
        data[count++] = v;
        --free;
        return *this;
    }
    // Appends the elements of a list that ends with a zero element (a text for
    // a byte list); a null pointer appends nothing.
    template <class U, std::enable_if_t<std::is_same<U, T>::value && std::is_scalar<U>::value, int> = 0>
    ObjAppendList& operator<<(const U* values) {
        if (!values) return *this;
        long n = 0;
        while (!(values[n] == U())) ++n;
        return append(n, values);
    }
    ObjAppendList& append(long n, const T* values) {
        if (n <= 0) return *this;
        grow(n);
        if constexpr (std::is_trivially_copyable<T>::value) {
            std::memcpy(static_cast<void*>(data + count), values, n * sizeof(T));
        } else {
            for (long i = 0; i < n; ++i) data[count + i] = values[i];
        }
        count += n;
        free -= n;
        return *this;
    }
    // Pops the last element into v; nothing on an empty list.
    ObjAppendList& operator>>(T& v) {
        if (count > 0) {
            v = data[--count];
            ++free;
        }
        return *this;
    }
    // Pops up to `increment` elements from the end into target, in their order.
    long operator>>(T* target) {
        long n = increment < count ? increment : count;
        for (long i = 0; i < n; ++i) target[i] = data[count - n + i];
        count -= n;
        free += n;
        return n;
    }

    T& last() const { return data[count - 1]; }
    T* getList() const { return data; }

    // Forgets the last n elements; n negative forgets all.
    void del(long n = 1) {
        if (n < 0 || n > count) n = count;
        count -= n;
        free += n;
    }
    void reverse() {
        for (long i = 0, j = count - 1; i < j; ++i, --j) std::swap(data[i], data[j]);
    }
    // Moves the elements cyclically: element i goes to (i + n) mod count.
    void rotate(long n) {
        if (count < 2) return;
        n %= count;
        if (n < 0) n += count;
        if (n == 0) return;
        reverseRange(0, count - 1);
        reverseRange(0, n - 1);
        reverseRange(n, count - 1);
    }
    // Empties the list: with release the buffer goes too, else its slots become free.
    void flush(bool releaseBuffer = false) {
        if (releaseBuffer) {
            release();
        } else {
            free += count;
            count = 0;
        }
    }
    // Shrinks the buffer to count.
    void end() {
        if (free <= 0) return;
        if (count == 0) {
            release();
            return;
        }
        resize(count, std::is_trivially_copyable<T>());
        free = 0;
    }

    // Appends the last n elements (all for n < 0 or n > count) to the other list.
    long send(ObjAppendList& to, long n = -1) const {
        if (n < 0 || n > count) n = count;
        to.append(n, data + count - n);
        return n;
    }
    // Gives the last n elements to the other list, forgetting them here.
    long push(ObjAppendList& to, long n = -1) {
        n = send(to, n);
        count -= n;
        free += n;
        return n;
    }
    // Takes the last n elements of the other list.
    long receive(ObjAppendList& from, long n = -1) { return from.push(*this, n); }
    long pop(ObjAppendList& to, long n = -1) { return push(to, n); }

protected:
    // Room for n more elements while appending: the list at least doubles.
    void grow(long n) {
        if (free >= n) return;
        long add = n - free;
        if (add < increment) add = increment;
        if (add < count + free) add = count + free;
        alloc(add, std::is_trivially_copyable<T>());
    }
    void reverseRange(long a, long b) {
        for (; a < b; ++a, --b) std::swap(data[a], data[b]);
    }
    void release() {
        if (data) {
            if constexpr (std::is_trivially_copyable<T>::value) std::free(data);
            else delete[] data;
        }
        data = nullptr;
        count = free = 0;
    }
    // Growth for plain types: realloc, free bytes cleared to zero.
    void alloc(long add, std::true_type) {
        long slots = count + free + add;
        T* grown = static_cast<T*>(std::realloc(static_cast<void*>(data), slots * sizeof(T)));
        if (!grown) throw std::bad_alloc();
        data = grown;
        std::memset(static_cast<void*>(data + count), 0, (free + add) * sizeof(T));
        free += add;
    }
    // Growth for other types: a new array, elements assigned across.
    void alloc(long add, std::false_type) {
        long slots = count + free + add;
        T* grown = new T[slots];
        for (long i = 0; i < count; ++i) grown[i] = std::move(data[i]);
        delete[] data;
        data = grown;
        free += add;
    }
    void resize(long slots, std::true_type) {
        T* shrunk = static_cast<T*>(std::realloc(static_cast<void*>(data), slots * sizeof(T)));
        if (shrunk) data = shrunk;
    }
    void resize(long slots, std::false_type) {
        T* shrunk = new T[slots];
        for (long i = 0; i < count; ++i) shrunk[i] = std::move(data[i]);
        delete[] data;
        data = shrunk;
    }
};

// A list of owned pointers: the destructor, del, pop and flush delete elements.
template <class T>
class ObjAppendListP : public ObjAppendList<T*> {
    using Base = ObjAppendList<T*>;

public:
    explicit ObjAppendListP(long n = 0) : Base(n) {}
    ObjAppendListP(const ObjAppendListP&) = delete;
    ObjAppendListP& operator=(const ObjAppendListP&) = delete;
    ~ObjAppendListP() override { deleteLast(this->count); }

    T& operator[](long i) const { return *this->data[i]; }
    T* at(long i) const { return this->data[i]; }

    ObjAppendListP& operator<<(T* v) {
        Base::operator<<(v);
        return *this;
    }
    // Deletes the last n elements; n negative deletes all.
    void del(long n = 1) {
        if (n < 0 || n > this->count) n = this->count;
        deleteLast(n);
    }
    void pop(long n = 1) { del(n); }
    using Base::pop;
    void flush(bool releaseBuffer = false) {
        deleteLast(this->count);
        Base::flush(releaseBuffer);
    }
    // Removes element i without deleting it, keeping the order of the others.
    T* take(long i) {
        T* v = this->data[i];
        for (long j = i; j + 1 < this->count; ++j) this->data[j] = this->data[j + 1];
        --this->count;
        ++this->free;
        return v;
    }

private:
    void deleteLast(long n) {
        for (long i = 0; i < n; ++i) {
            T* v = this->data[this->count - 1];
            --this->count;
            ++this->free;
            delete v;
        }
    }
};

}  // namespace zun
