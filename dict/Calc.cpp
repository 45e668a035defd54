#include "dict/Calc.h"

#include <list>
#include <memory>

#include "base/Exception.h"
#include "calc/CalcError.h"
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

namespace {

// Where the arrays around an element stand. A statement may read other
// elements of such an array (".recs.0.k" while recs stands on element 1),
// which moves it; the element the statement serves must be read where it
// stood, so the arrays go back when the statement is done.
class Places {
public:
    explicit Places(StructElem& e) {
        for (StructElem* p = e.parent; p && count < maxKept; p = p->parent) {
            if (!p->isAnArray()) continue;
            auto* a = static_cast<StructArrayBase*>(p);
            kept[count++] = {a, a->activeIndex, a->element->offset >= 0};
        }
    }
    // Outermost first, all of them once one moved: an outer move restarts
    // the arrays inside it.
    void restore() {
        bool moved = false;
        for (int i = 0; i < count && !moved; ++i)
            moved = kept[i].array->activeIndex != kept[i].index || (kept[i].placed && kept[i].array->element->offset < 0);
        if (!moved) return;
        for (int i = count - 1; i >= 0; --i) kept[i].array->getElement(kept[i].index);
    }

private:
    struct Place {
        StructArrayBase* array;
        long index;
        bool placed;  // the element had its place
    };
    static const int maxKept = 16;
    Place kept[maxKept];
    int count = 0;
};

}  // namespace

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
    Places places(owner);
    try {
        parseStatement();
        places.restore();
    } catch (String& refused) {
        // A node that refuses its arguments while it is bound (the array
        // functions) says why in a bare text: an error of the statement.
        zun::CalcError error(refused.str());
        if (!wrapsParseErrors()) throw error;
        throwParseError(error);
    } catch (zun::Exception& e) {
        if (!wrapsParseErrors()) throw;
        throwParseError(e);
    }
}

bool Calc::wrapsParseErrors() const {
    return role == Virtual || role == Size || role == Switch;
}

void Calc::throwParseError(const zun::Exception& cause) {
    String text;
    switch (role) {
    case Virtual:
        text = "virtual field " + quoted(owner.elemName) + " is invalid";
        break;
    case Size:
        text = "invalid size statement for field " + quoted(owner.getPathName());
        break;
    default:
        text = "invalid union switch for field " + quoted(owner.getPathName());
        break;
    }
    ErrorDictionary error(owner.getDictionaryPath().str(), text.str());
    error.chain(cause);
    throw error;
}

void Calc::parseStatement() {
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
    Places places(owner);
    long long value = node->valInt();
    places.restore();
    return value;
}

template <class F>
auto Calc::evaluate(F get) -> decltype(get()) {
    if (dirty == 0) return get();
    getCalcNode();
    Running running(*this);
    Places places(owner);
    try {
        node->reset();
        get();
        places.restore();
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
