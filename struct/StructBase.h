// vexa::StructBase: the record at the root of a tree. It owns what the whole
// tree shares: the input stream, the parameters that expressions see as
// constants, and the dependency slots, pointers to cached 64-bit values that
// moving arrays mark stale.
#pragma once

#include "base/ObjAppendList.h"
#include "calc/CalcBinder.h"
#include "struct/DepCell.h"
#include "struct/StructRec.h"

namespace zun {
class InputStream;
}

namespace vexa {

class StructBase : public StructRec {
public:
    zun::InputStream* input;               // never null; owned
    zun::CalcBinderNodeList parameters;    // named constants of this file
    zun::ObjAppendList<long*> depSlots;    // cached values; null once their element is gone

    // Takes the stream over; a null stream throws StdError 22. Sets the
    // standard parameters, then reads the dictionary's header.
    StructBase(const char* dictionary, zun::InputStream* input);
    ~StructBase() override;

    // Gives cell an entry in depSlots and returns its index; -1 when the cell
    // is registered already.
    long allocDep(DepCell& cell);
    // Nulls the entry of cell; the list keeps its length so that indices held
    // by arrays stay valid. Nothing for a cell that isn't registered here.
    void removeDep(DepCell& cell);

    // The parameters of every file, there before any file.
    static zun::CalcBinderNodeList& globalParameters();

    // Parameter lists: a null name is called "numeric constant".
    static void addParameter(const char* name, long long value, zun::CalcBinderNodeList& list);
    static void addParameter(const char* name, double value, zun::CalcBinderNodeList& list);
    // With a name, a text constant; with a null or empty name, value is the
    // path of a definitions file whose variables become parameters.
    static void addParameter(const char* name, const char* value, zun::CalcBinderNodeList& list);
    // Deletes the last node of that name; a name not found is no error.
    static void removeParameter(const char* name, zun::CalcBinderNodeList& list);

    // "filename", "dirname", "pathname", "filesize" and "fifo" of the stream.
    void initParameters();
};

}  // namespace vexa
