// vexa::DepCell: a cached 64-bit value of the tree (an offset, a size, an
// element count, a union switch, the freshness of a statement's result) that
// the arrays able to change it mark stale.
//
// A cell is registered at most once: the root's dependency slots get a
// pointer to its value, and the slot's index goes to the array that moves it
// and to every array above it. A move writes -1 through the slots; the next
// request works the value out again. The cell takes itself off the root when
// it goes, so no element has to remember to.
#pragma once

namespace vexa {

class StructArray;
class StructBase;

class DepCell {
public:
    long value;

    explicit DepCell(long v = -1) : value(v) {}
    DepCell(const DepCell&) = delete;
    DepCell& operator=(const DepCell&) = delete;
    ~DepCell() { release(); }

    operator long() const { return value; }
    DepCell& operator=(long v) {
        value = v;
        return *this;
    }

    // Registers the cell with array and all arrays above it. Nothing for a
    // null array, or when the cell is registered already (the first array
    // keeps it). Returns the array.
    StructArray* registerWith(StructArray* array);
    bool isRegistered() const { return root != nullptr; }
    // The slot in the root's list; -1 when not registered.
    long slotIndex() const { return slot; }
    // Takes the cell off the root: its slot is emptied, indices held by the
    // arrays stay valid.
    void release();

private:
    friend class StructBase;
    StructBase* root = nullptr;
    long slot = -1;
};

}  // namespace vexa
