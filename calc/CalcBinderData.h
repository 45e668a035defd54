// Binders that expose a C++ object, or the fields of one, as read-only
// symbols of the expression language.
//
// A CalcBinderData answers names that begin with its prefix. The plain prefix
// gives a CalcNodeData<T> over the object that the binder holds at the time
// of each read (setObject switches it for every node already bound, without
// reparsing); "prefix()" gives a CalcNodeDataValid<T>, 1 while there is an
// object. What follows the prefix is asked of the binder's fields, each a
// binder of its own whose object is computed from the parent's: so
// "err.time.year" reads the year of the time of the exception bound as "err".
// A null object reads as NA, never as an error.
//
// CalcBinderDataIterator walks a list of rows: it is the iterator of the
// expressions bound to it and sets the object of its field binders to the
// current row.
#pragma once

#include <type_traits>

#include "base/Exception.h"
#include "base/JulianDate.h"
#include "base/ObjAppendList.h"
#include "base/String.h"
#include "calc/CalcBinder.h"
#include "calc/CalcNode.h"

namespace zun {

class CalcBinderData : public CalcBinder {
public:
    String prefix;
    String suffix;   // the rest of the name last matched

    explicit CalcBinderData(const char* prefix) : prefix(prefix ? prefix : "") {}

    CalcNode* bindSymbol(const char* name) override;
    CalcNode* bindFunction(const char* name, ObjAppendListP<CalcNode>* args) override;

    virtual bool isFunction() { return false; }
    virtual void setObject(const void*) {}
    virtual const void* getObject() { return nullptr; }
    virtual CalcNode* bindSymbolSuffix() { return nullptr; }
    virtual CalcNode* bindFunctionSuffix(ObjAppendListP<CalcNode>*) { return nullptr; }

protected:
    // Whether name begins with prefix; the rest goes to suffix.
    bool matchesName(const char* name);
};

// A read of an object of type T: a number (int, long, double), a text
// (char const*, String), a date (JulianDate) or an Exception, which has no
// value of its own.
template <class T>
class CalcNodeData : public CalcNode {
public:
    const T* object;
    CalcBinderData* binder;   // where object comes from at each read; null: fixed
    int level;

    CalcNodeData(const char* name, CalcBinderData* binder, const T* object, int level)
        : CalcNode(name), object(object), binder(binder), level(level) {}

    Type nodeType() override { return TypeData; }
    int valType() override { return isText() ? ValStr : ValNum; }
    int constLevel() override { return level; }
    double valNum() override;
    String valStr() override;

protected:
    static constexpr bool isText() {
        return std::is_same<T, const char*>::value || std::is_same<T, String>::value;
    }
    // The object of this read.
    const T* refresh() {
        if (binder) object = static_cast<const T*>(binder->getObject());
        return object;
    }
};

// name(): 1 while the binder has an object, else 0.
template <class T>
class CalcNodeDataValid : public CalcNodeData<T> {
public:
    using CalcNodeData<T>::CalcNodeData;
    int valType() override { return ValNum; }
    double valNum() override { return this->refresh() ? 1.0 : 0.0; }
    String valStr() override { return CalcNode::nullStr(); }
};

template <class T>
double CalcNodeData<T>::valNum() {
    const T* o = refresh();
    if (!o) return NaN();
    if constexpr (std::is_same<T, JulianDate>::value) {
        return static_cast<double>(o->usec) / 86400000000.0;
    } else if constexpr (std::is_same<T, String>::value) {
        return o->toSmartDouble();
    } else if constexpr (std::is_same<T, const char*>::value) {
        return String(*o).toSmartDouble();
    } else if constexpr (std::is_arithmetic<T>::value) {
        return static_cast<double>(*o);
    } else {
        return NaN();
    }
}

template <class T>
String CalcNodeData<T>::valStr() {
    const T* o = refresh();
    if (!o) return nullStr();
    if constexpr (std::is_same<T, JulianDate>::value) {
        return o->str(-1);
    } else if constexpr (std::is_same<T, String>::value) {
        return *o;
    } else if constexpr (std::is_same<T, const char*>::value) {
        return String(*o);
    } else if constexpr (std::is_arithmetic<T>::value) {
        return CalcNode::valStr();
    } else {
        return nullStr();
    }
}

// A binder over one object of type T.
template <class T>
class CalcBinderDataSType : public CalcBinderData {
public:
    const T* object = nullptr;

    explicit CalcBinderDataSType(const char* prefix, const T* object = nullptr)
        : CalcBinderData(prefix), object(object) {}

    void setObject(const void* p) override { object = static_cast<const T*>(p); }
    const void* getObject() override { return object; }
    CalcNode* bindSymbolSuffix() override {
        if (suffix.length > 0 || isFunction()) return nullptr;
        return new CalcNodeData<T>(prefix.text, this, nullptr, 0);
    }
};

// A binder over an object with fields: what follows the prefix is asked of
// the field binders, the first answer wins.
template <class T>
class CalcBinderDataStruct : public CalcBinderDataSType<T> {
public:
    CalcBinderListT<CalcBinderData> fields;

    explicit CalcBinderDataStruct(const char* prefix, const T* object = nullptr)
        : CalcBinderDataSType<T>(prefix, object) {
        initFields();
    }

    CalcNode* bindSymbolSuffix() override {
        if (this->suffix.length == 0) return CalcBinderDataSType<T>::bindSymbolSuffix();
        return fields.bindSymbol(this->suffix.text);
    }
    CalcNode* bindFunctionSuffix(ObjAppendListP<CalcNode>* args) override {
        if (this->suffix.length == 0 && !args) return new CalcNodeDataValid<T>(this->prefix.text, this, nullptr, 0);
        return fields.bindFunction(this->suffix.str(), args);
    }
    // Fills fields: the named fields of a T, if it has any.
    void initFields() {}
};

template <class T>
class CalcBinderDataType : public CalcBinderDataStruct<T> {
public:
    using CalcBinderDataStruct<T>::CalcBinderDataStruct;
};

// A field of type R that a member function of T gives by reference: the
// object of the field is the R inside the parent's object.
template <class R, class T>
class CalcBinderDataFieldMethod1 : public CalcBinderDataType<R> {
public:
    using Method = const R& (T::*)() const;

    CalcBinderDataFieldMethod1(const char* prefix, Method method, CalcBinderData& parent)
        : CalcBinderDataType<R>(prefix), method(method), parent(parent) {}

    const void* getObject() override {
        const T* o = static_cast<const T*>(parent.getObject());
        return o ? &(o->*method)() : nullptr;
    }

private:
    Method method;
    CalcBinderData& parent;
};

// A field of type R that a member function of T gives by value: computed at
// every read, and kept until the next one.
template <class R, class T>
class CalcBinderDataFieldMethod3 : public CalcBinderDataType<R> {
public:
    using Method = R (T::*)() const;

    CalcBinderDataFieldMethod3(const char* prefix, Method method, CalcBinderData& parent)
        : CalcBinderDataType<R>(prefix), method(method), parent(parent) {}
    ~CalcBinderDataFieldMethod3() override { delete last; }
    CalcBinderDataFieldMethod3(const CalcBinderDataFieldMethod3&) = delete;
    CalcBinderDataFieldMethod3& operator=(const CalcBinderDataFieldMethod3&) = delete;

    const void* getObject() override {
        delete last;
        last = nullptr;
        const T* o = static_cast<const T*>(parent.getObject());
        if (!o) return nullptr;
        last = new R((o->*method)());
        return last;
    }

private:
    Method method;
    CalcBinderData& parent;
    R* last = nullptr;
};

// The fields of an Exception: ".family", ".code", ".sig", ".title", ".msg"
// and ".time", the last with the fields of a JulianDate.
template <>
void CalcBinderDataStruct<Exception>::initFields();
// The fields of a JulianDate: ".monthstr", ".month", ".year", ".mday",
// ".yday", ".wday", ".hour", ".min", ".sec", ".dsec".
template <>
void CalcBinderDataStruct<JulianDate>::initFields();

class CalcBinderDataIterator;

// The iterator that CalcBinderDataIterator hands out; it forwards to it.
class CalcDataIterator : public CalcIterator {
public:
    explicit CalcDataIterator(CalcBinderDataIterator& rows) : CalcIterator(0), rows(rows) {}
    long count() override;
    long getIndex() override;
    void setIndex(long i) override;

private:
    CalcBinderDataIterator& rows;
};

// A binder over a list of rows, and an iterator over them at once: the
// current row is the object of every field binder in the list.
class CalcBinderDataIterator : public CalcIterator, public CalcBinderListT<CalcBinderData> {
public:
    ObjAppendList<const void*> rows;

    CalcBinderDataIterator() : CalcIterator(0) {}

    // Level 0 only; any other level throws the String "invalid iterator reference".
    CalcIterator* bindIterator(int level) override;
    long count() override { return rows.count; }
    long getIndex() override { return index; }
    void setIndex(long i) override;

private:
    long index = 0;
};

extern template class CalcNodeData<int>;
extern template class CalcNodeData<long>;
extern template class CalcNodeData<double>;
extern template class CalcNodeData<const char*>;
extern template class CalcNodeData<String>;
extern template class CalcNodeData<JulianDate>;
extern template class CalcNodeData<Exception>;

}  // namespace zun
