#include "dict/Calc.h"

#include <list>
#include <memory>

#include "base/Exception.h"
#include "calc/CalcNode.h"
#include "calc/CalcParser.h"
#include "struct/Error.h"
#include "struct/StructArray.h"
#include "struct/StructElem.h"

using zun::CalcNode;
using zun::String;
using zun::quoted;

namespace vexa {

Calc::Calc(const char* statement, StructElem& owner, Role role, StructElem* bound)
    : statement(statement), owner(owner), role(role), bound(bound ? bound : &owner) {}

Calc::~Calc() {
    delete node;
}

void Calc::unparse() {
    delete node;
    node = nullptr;
    dirty.release();
    dirty = -1;
}

CalcNode* Calc::getCalcNode() {
    if (!node) init_statement();
    return node;
}

Calc::Running::Running(Calc& calc) : calc(calc) {
    if (calc.running) {
        static const char* const reasons[] = {"in virtual field computation", "in size computation",
                                              "in offset computation",        "in array dimension computation",
                                              "in union switch computation",  "in link computation"};
        throw ErrorReferenceRecursion(calc.owner.getPathName().str(), reasons[calc.role]);
    }
    calc.running = true;
}

void Calc::init_statement() {
    Running running(*this);
    try {
        std::unique_ptr<CalcNode> parsed(
            new zun::CalcParser(statement.str(), bound->getCalcBinder(nullptr, nullptr), false));
        if (role == Virtual) {
            // A statement that names the field it defines would read itself.
            std::list<CalcNode*> self;
            if (parsed->listNodes(self, "#", nullptr, true) > 0) {
                String reason = "virtual field statement is (" + statement + ")";
                throw ErrorReferenceRecursion(owner.getPathName().str(), reason.str());
            }
        }
        // A fold reads the fields of a constant statement, and may fail.
        CalcNode* folded = parsed->reduce();
        if (folded && folded != parsed.get()) parsed.reset(folded);
        if (role == Virtual) {
            parsed.reset(new zun::CalcNodeMem("", parsed.release()));
            node = parsed.release();
            registerCell(dirty);
        } else {
            node = parsed.release();
        }
    } catch (zun::Exception& e) {
        String text;
        switch (role) {
        case Virtual:
            text = "virtual field " + quoted(owner.elemName) + " is invalid";
            break;
        case Size:
            text = "invalid size statement for field " + quoted(owner.getPathName());
            break;
        case Switch:
            text = "invalid union switch for field " + quoted(owner.getPathName());
            break;
        default:
            throw;
        }
        ErrorDictionary error(owner.getDictionaryPath().str(), text.str());
        error.chain(e);
        throw error;
    }
}

int Calc::constLevel() {
    return getCalcNode()->constLevel();
}

StructArray* Calc::dependency() {
    return owner.getParentArray(constLevel());
}

StructArray* Calc::registerCell(DepCell& cell) {
    return cell.registerWith(dependency());
}

long long Calc::valInt() {
    getCalcNode();
    Running running(*this);
    return node->valInt();
}

template <class F>
auto Calc::evaluate(F get) -> decltype(get()) {
    if (dirty == 0) return get();
    getCalcNode();
    Running running(*this);
    try {
        node->reset();
        get();
        dirty = 0;
        return get();
    } catch (zun::Exception& e) {
        ErrorCalc error((quoted(owner.getPathName()) + " ").str());
        error.chain(e);
        throw error;
    }
}

double Calc::valNum() {
    return evaluate([this] { return node->valNum(); });
}

String Calc::valStr() {
    return evaluate([this] { return node->valStr(); });
}

zun::RawBuffer& Calc::valRaw(zun::RawBuffer& buffer) {
    return evaluate([this, &buffer]() -> zun::RawBuffer& { return node->valRaw(buffer); });
}

}  // namespace vexa
