// vexa::CalcNodeRef: a field of the file inside an expression.
//
// Reading the node reads the bytes of the field, after moving every array on
// the way to it to the index that the reference holds (its StructAlias).
// Through the syntax of the expression language a reference offers:
//   x y             the field y below x (keyword)
//   x@size ...      the properties of CalcNodeRefProperty (case ignored)
//   x@child("a.b")  narrows the reference at binding time
//   x@exec("text")  a statement run in the scope of x
//   a[i]            element i of an array (CalcNodeRefArrayIndex); a text
//                   index is a path component: "#last", "id=A*", ...
//
// constLevel() is the array level whose moves change the value: 0 the array
// nearest the statement's element, -1 for a field that no array moves. A
// reference anchored at the root with level -1 is read once at binding time
// and folded to a constant.
#pragma once

#include "calc/CalcNode.h"
#include "struct/StructAlias.h"

namespace vexa {

class CalcNodeRef : public zun::CalcNodeFunc {
public:
    int constLevelValue;   // the array level on which the value depends; -1 on none
    StructAlias* alias;    // the field; owned

    // Takes alias over, also when it throws. A reference that can't move
    // (negative constLevel) settles a union of fixed type to its alternative.
    CalcNodeRef(const char* name, StructAlias* alias, int constLevel);
    ~CalcNodeRef() override;

    // The alias to read through; a subscript moves its array first.
    virtual StructAlias* getRef();

    Type nodeType() override { return TypeRef; }
    int valType() override;
    int constLevel() override { return constLevelValue; }
    zun::CalcNode* implements(const char* what) override;   // itself for "vexa::ref"
    zun::CalcNode* keyword(const char* word, zun::CalcNodeMem* via) override;
    zun::CalcNode* property(const char* name, zun::CalcNodeMem* via) override;
    zun::CalcNode* method(const char* name, zun::ObjAppendListP<zun::CalcNode>* args,
                          zun::CalcNodeMem* via) override;
    using zun::CalcNode::method;
    double valNum() override;
    zun::String valStr() override;
    long long valInt() override;
    zun::RawBuffer& valRaw(zun::RawBuffer& buffer) override;
    using zun::CalcNode::valRaw;
    zun::CalcNode* reduce() override;

protected:
    // With an argument list (a subscript): the list is taken over.
    CalcNodeRef(const char* name, StructAlias* alias, int constLevel, zun::ObjAppendListP<zun::CalcNode>* args);

private:
    // x@child(path): narrows the alias; args are deleted when it succeeds.
    void methodChild(zun::ObjAppendListP<zun::CalcNode>* args);
    zun::CalcNode* methodExec(const char* name, zun::ObjAppendListP<zun::CalcNode>* args);
};

// a[i], a[i, j], a["#last"]: element i of the array that `ref` names. The
// index is argument 1, the array reference argument 0. The element is one
// object whatever the index, so one alias on it serves: getRef() moves the
// array and answers it. A keyword extends the alias below the element.
class CalcNodeRefArrayIndex : public CalcNodeRef {
public:
    CalcNodeRef* ref;   // the array reference; owned as argument 0
    bool byName;        // a text index goes to getChild, not to operator[]

    // Takes receiver and args over once it is made; when the argument count
    // is wrong or the array can't be reached it throws and takes nothing.
    CalcNodeRefArrayIndex(const char* name, zun::CalcNode* receiver, zun::ObjAppendListP<zun::CalcNode>* args);

    StructAlias* getRef() override;
    Type nodeType() override { return TypeMethod; }
    // The lowest level among the array reference and the indices.
    int constLevel() override { return CalcNodeFunc::constLevel(); }
    // Reduces the indices; never folds.
    zun::CalcNode* reduce() override;

private:
    struct Parts {
        StructAlias* element;
        bool byName;
    };
    static Parts partsOf(const char* name, zun::CalcNode* receiver, zun::ObjAppendListP<zun::CalcNode>* args);
    CalcNodeRefArrayIndex(const char* name, zun::CalcNode* receiver, zun::ObjAppendListP<zun::CalcNode>* args,
                          Parts parts);
};

// x@size and the other properties of a field, by row of the table in
// CalcNodeRef.cpp. `object` is the reference, or a link to it when the
// property was asked through a variable.
class CalcNodeRefProperty : public zun::CalcNodeProperty {
public:
    enum Row { RowSize, RowOffset, RowOffsetNext, RowPos, RowPosNext, RowDim, RowFileSize, RowType, RowName, RowFileName };
    int propertyIndex;

    CalcNodeRefProperty(const char* name, zun::CalcNode* object, int propertyIndex);
    // The row of a property name, case ignored; -1 for none.
    static int rowOf(const char* name);

    int valType() override;
    double valNum() override;
    zun::String valStr() override;

private:
    CalcNodeRef& reference();
    double number();
};

}  // namespace vexa
