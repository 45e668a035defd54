// vexa::Calc: a statement of the expression language kept beside an element
// of the tree. It is parsed at its first use against a binder standing at the
// element's place, reduced, and registered with the array whose moves can
// change its value (the array level that its constLevel() names).
//
// Every statement of the tree goes through it: sizes, offsets, dimensions,
// union switches and virtual fields. The role of the statement decides how
// its failures reach the user:
//
//   role       parse failure                                 run failure
//   Virtual    ErrorDictionary "virtual field "x" is invalid"  ErrorCalc "path"
//   Size       ErrorDictionary "invalid size statement for field "path""
//   Switch     ErrorDictionary "invalid union switch for field "path""
//   Offset, Dimension, Link   the parser's error as it stands
//
// A virtual field's value is kept (a memory node around the statement) until
// a registered array moves: `dirty` is its dependency cell. The other roles
// cache their result in a cell of their element (a size, an offset, a count,
// a switch) and ask the statement again when that cell is stale.
#pragma once

#include "base/RawBuffer.h"
#include "base/String.h"
#include "struct/DepCell.h"

namespace zun {
class CalcNode;
class Exception;
}

namespace vexa {

class StructArray;
class StructElem;

class Calc {
public:
    enum Role { Virtual, Size, Offset, Dimension, Switch, Link };

    zun::String statement;
    StructElem& owner;              // the element the statement belongs to; not owned
    zun::CalcNode* node = nullptr;  // the parsed statement; null until first use; owned
    DepCell dirty;                  // 0 while a virtual field's node holds a current value

    // Nothing is parsed here. `bound` is where names are looked up from: the
    // owner unless given (a record's "+ " size looks from its first field).
    Calc(const char* statement, StructElem& owner, Role role = Virtual, StructElem* bound = nullptr);
    ~Calc();
    Calc(const Calc&) = delete;
    Calc& operator=(const Calc&) = delete;

    // Parses if needed.
    zun::CalcNode* getCalcNode();
    // -1 for a statement that no array moves, else the level of the array
    // (0 the nearest around the owner) whose moves change its value.
    int constLevel();
    // The array of constLevel() around the owner; null for a constant.
    StructArray* dependency();
    // Registers cell with dependency() and the arrays above it; returns that
    // array (null: the value never changes).
    StructArray* registerCell(DepCell& cell);

    // Evaluations of the statement as it stands now.
    long long valInt();
    // A virtual field's value: evaluated again only after a registered array moved.
    double valNum();
    zun::String valStr();
    zun::RawBuffer& valRaw(zun::RawBuffer& buffer);
    // Forgets the parsed statement (its bound element is gone).
    void unparse();

private:
    Role role;
    StructElem* bound;
    bool running = false;   // being parsed or evaluated

    // Marks the statement as running for the life of the object. A statement
    // asked again while it runs depends on itself (a size that needs the
    // position of a field behind it, an offset that reads the field it
    // places): that fails with ErrorReferenceRecursion instead of recursing
    // without end.
    class Running {
    public:
        explicit Running(Calc& calc);
        ~Running() { calc.running = false; }
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;

    private:
        Calc& calc;
    };

    // Parses, with the error policy of the role.
    void init_statement();
    void parseStatement();
    // Whether a parse failure is wrapped in a dictionary error naming the field.
    bool wrapsParseErrors() const;
    [[noreturn]] void throwParseError(const zun::Exception& cause);
    // A run of the statement with the virtual field's error policy.
    template <class F>
    auto evaluate(F get) -> decltype(get());
};

}  // namespace vexa
