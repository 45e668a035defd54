#include "struct/StructBase.h"

#include "base/Exception.h"
#include "calc/CalcNode.h"
#include "input/FileUtils.h"
#include "input/InputStream.h"

using zun::CalcBinderNodeList;
using zun::CalcNodeConst;
using zun::String;

namespace vexa {

StructBase::StructBase(const char* dictionary, zun::InputStream* stream) : StructRec(*this), input(stream) {
    depSlots.setTruncSize(64);
    if (!input) throw zun::StdError("InputStream IO handler is null", 22);
    try {
        initParameters();
        autoDescribe(dictionary);
    } catch (...) {
        // The bases' destructors run after this object's members are gone:
        // the fields must go while the slots and the stream are still here.
        clearFields();
        delete input;
        input = nullptr;
        throw;
    }
}

StructBase::~StructBase() {
    // The fields go while the slots and the stream are still here.
    clearFields();
    delete input;
}

long StructBase::allocDep(DepCell& cell) {
    if (cell.root) return -1;
    depSlots << &cell.value;
    cell.root = this;
    cell.slot = depSlots.count - 1;
    return cell.slot;
}

void StructBase::removeDep(DepCell& cell) {
    if (cell.root != this) return;
    depSlots.data[cell.slot] = nullptr;
    cell.root = nullptr;
    cell.slot = -1;
}

CalcBinderNodeList& StructBase::globalParameters() {
    static CalcBinderNodeList list;
    return list;
}

void StructBase::addParameter(const char* name, long long value, CalcBinderNodeList& list) {
    list << new CalcNodeConst<long long>(name ? name : "numeric constant", value);
}

void StructBase::addParameter(const char* name, double value, CalcBinderNodeList& list) {
    list << new CalcNodeConst<double>(name ? name : "numeric constant", value);
}

void StructBase::addParameter(const char* name, const char* value, CalcBinderNodeList& list) {
    if (!name || !*name) {
        list.readDefinitions(value);
        return;
    }
    list << new CalcNodeConst<String>(name, String(value));
}

void StructBase::removeParameter(const char* name, CalcBinderNodeList& list) {
    String wanted(name);
    for (long i = list.count - 1; i >= 0; --i) {
        if (list.data[i]->name == wanted) {
            delete list.take(i);
            return;
        }
    }
}

void StructBase::initParameters() {
    if (!input) return;
    String path(input->name());
    bool fifo = input->isFifo();
    parameters << new CalcNodeConst<String>("filename", zun::FileUtils::baseName(path.str(), false));
    parameters << new CalcNodeConst<String>("dirname",
                                            fifo ? String(nullptr) : zun::FileUtils::dirName(path.str(), false));
    parameters << new CalcNodeConst<String>("pathname", path);
    parameters << new CalcNodeConst<long long>("filesize", static_cast<long long>(input->size()));
    parameters << new CalcNodeConst<double>("fifo", fifo ? 1.0 : 0.0);
}

}  // namespace vexa
