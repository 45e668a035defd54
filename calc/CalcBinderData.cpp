#include "calc/CalcBinderData.h"

#include <cstring>

namespace zun {

bool CalcBinderData::matchesName(const char* name) {
    if (!name) return false;
    size_t n = static_cast<size_t>(prefix.length);
    if (std::strncmp(name, prefix.str(), n) != 0) return false;
    suffix = name + n;
    return true;
}

CalcNode* CalcBinderData::bindSymbol(const char* name) { return matchesName(name) ? bindSymbolSuffix() : nullptr; }

CalcNode* CalcBinderData::bindFunction(const char* name, ObjAppendListP<CalcNode>* args) {
    return matchesName(name) ? bindFunctionSuffix(args) : nullptr;
}

template <>
void CalcBinderDataStruct<Exception>::initFields() {
    fields << new CalcBinderDataFieldMethod3<const char*, Exception>(".family", &Exception::family, *this);
    fields << new CalcBinderDataFieldMethod3<int, Exception>(".code", &Exception::code, *this);
    fields << new CalcBinderDataFieldMethod3<String, Exception>(".sig", &Exception::signature, *this);
    fields << new CalcBinderDataFieldMethod3<const char*, Exception>(".title", &Exception::title, *this);
    fields << new CalcBinderDataFieldMethod3<String, Exception>(".msg", &Exception::msg, *this);
    fields << new CalcBinderDataFieldMethod1<JulianDate, Exception>(".time", &Exception::timeStamp, *this);
}

template <>
void CalcBinderDataStruct<JulianDate>::initFields() {
    fields << new CalcBinderDataFieldMethod3<String, JulianDate>(".monthstr", &JulianDate::monthStr, *this);
    fields << new CalcBinderDataFieldMethod3<int, JulianDate>(".month", &JulianDate::month, *this);
    fields << new CalcBinderDataFieldMethod3<int, JulianDate>(".year", &JulianDate::year, *this);
    fields << new CalcBinderDataFieldMethod3<int, JulianDate>(".mday", &JulianDate::monthDay, *this);
    fields << new CalcBinderDataFieldMethod3<int, JulianDate>(".yday", &JulianDate::yearDay, *this);
    fields << new CalcBinderDataFieldMethod3<int, JulianDate>(".wday", &JulianDate::weekDay, *this);
    fields << new CalcBinderDataFieldMethod3<int, JulianDate>(".hour", &JulianDate::hour, *this);
    fields << new CalcBinderDataFieldMethod3<int, JulianDate>(".min", &JulianDate::minute, *this);
    fields << new CalcBinderDataFieldMethod3<int, JulianDate>(".sec", &JulianDate::second, *this);
    fields << new CalcBinderDataFieldMethod3<double, JulianDate>(".dsec", &JulianDate::daySeconds, *this);
}

long CalcDataIterator::count() { return rows.count(); }
long CalcDataIterator::getIndex() { return rows.getIndex(); }
void CalcDataIterator::setIndex(long i) { rows.setIndex(i); }

CalcIterator* CalcBinderDataIterator::bindIterator(int level) {
    if (level != 0) throw String("invalid iterator reference");
    return new CalcDataIterator(*this);
}

void CalcBinderDataIterator::setIndex(long i) {
    index = i;
    const void* row = (i >= 0 && i < rows.count) ? rows.data[i] : nullptr;
    for (long k = 0; k < entries.count; ++k) entries.data[k]->setObject(row);
}

template class CalcNodeData<int>;
template class CalcNodeData<long>;
template class CalcNodeData<double>;
template class CalcNodeData<const char*>;
template class CalcNodeData<String>;
template class CalcNodeData<JulianDate>;
template class CalcNodeData<Exception>;

}  // namespace zun
