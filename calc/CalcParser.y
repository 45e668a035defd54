/* The grammar of the expression language.
 *
 * Actions build nodes as rules reduce, through the functions of
 * CalcGrammar.h. An action that fails keeps its exception in the parser and
 * aborts, so that the automaton's clean-up releases the values still on its
 * stacks (the %destructor below) before CalcParser::init throws it.
 *
 * The stacks are fixed at 200 entries: deeper nesting ends the parse with
 * code 2. The one conflict, after '(' NAME ')', is settled by the shift: a
 * bare parenthesised name always starts the cast form.
 */
%code requires {
#include "calc/CalcLex.h"
namespace zun { class CalcParser; }
}

%code {
#include <exception>

#include "calc/CalcGrammar.h"
#include "calc/CalcParser.h"

#define YYINITDEPTH 200
#define YYMAXDEPTH 200

// The stacks never leave their automatic arrays, which the generated
// clean-up can't tell.
#pragma GCC diagnostic ignored "-Wfree-nonheap-object"

static int Calclex(zun::CalcParser* parser);
static void Calcerror(zun::CalcParser* parser, const char* message);

namespace g = zun::grammar;

#define ACT(code)                                              \
    do {                                                       \
        try {                                                  \
            code;                                              \
        } catch (...) {                                        \
            parser->pending = std::current_exception();       \
            YYABORT;                                           \
        }                                                      \
    } while (0)
}

%define api.prefix {Calc}
%define api.value.type {union zun::CalcValue}
%define api.location.type {zun::CalcLocation}
%locations
%parse-param {zun::CalcParser* parser}
%lex-param {zun::CalcParser* parser}
%expect 1

%token <str> SQ_STRING 258 DQ_STRING 259
%token <integer> INTEGER 260
%token <real> FLOAT 261
%token <str> NAME 262 BRACED 263 INVALID 264
%token EQ 265 NE 266 GE 267 LE 268 AND 269 OR 270 SHR 271 SHL 272
%token <str> OPER 273

%type <node> expr primary prefixed call
%type <args> args

%destructor { delete $$; } <str> <node> <args>

%precedence LOW
%left OPER
%left '?' ':'
%left OR
%left AND
%left '|'
%left '&'
%nonassoc EQ NE '~'
%nonassoc '<' '>' LE GE
%left SHR SHL
%left '+' '-'
%left '*' '/' '%'
%left '^'
%precedence '@' '[' NAME BRACED FLOAT INTEGER DQ_STRING SQ_STRING '!'
%precedence '('
%precedence CAST

%%

start
    : program                           { ACT(g::endOfProgram(*parser)); }
    ;

program
    : %empty
    | expr                              { ACT(g::statement(*parser, $1)); }
    | assignments
    | assignments ';'
    | assignments ';' expr              { ACT(g::statement(*parser, $3)); }
    | error                             { ACT(g::syntaxError(*parser, @1)); }
    ;

assignments
    : assignment
    | assignments ';' assignment
    ;

assignment
    : NAME '=' expr                     { ACT(g::assignment(*parser, $1, $3, @1, @3)); }
    ;

expr
    : primary
    | prefixed
    | expr OPER expr                    { ACT($$ = g::oper(*parser, $1, $2, $3, @2)); }
    | expr '?' expr ':' expr            { ACT($$ = g::conditional($1, $3, $5)); }
    | expr OR expr                      { ACT($$ = g::binary(*parser, "||", $1, $3, @2)); }
    | expr AND expr                     { ACT($$ = g::binary(*parser, "&&", $1, $3, @2)); }
    | expr '|' expr                     { ACT($$ = g::binary(*parser, "|", $1, $3, @2)); }
    | expr '&' expr                     { ACT($$ = g::binary(*parser, "&", $1, $3, @2)); }
    | expr EQ expr                      { ACT($$ = g::binary(*parser, "==", $1, $3, @2)); }
    | expr NE expr                      { ACT($$ = g::binary(*parser, "!=", $1, $3, @2)); }
    | expr '~' expr                     { ACT($$ = g::binary(*parser, "~", $1, $3, @2)); }
    | expr '<' expr                     { ACT($$ = g::binary(*parser, "<", $1, $3, @2)); }
    | expr '>' expr                     { ACT($$ = g::binary(*parser, ">", $1, $3, @2)); }
    | expr LE expr                      { ACT($$ = g::binary(*parser, "<=", $1, $3, @2)); }
    | expr GE expr                      { ACT($$ = g::binary(*parser, ">=", $1, $3, @2)); }
    | expr SHR expr                     { ACT($$ = g::binary(*parser, ">>", $1, $3, @2)); }
    | expr SHL expr                     { ACT($$ = g::binary(*parser, "<<", $1, $3, @2)); }
    | expr '+' expr                     { ACT($$ = g::binary(*parser, "+", $1, $3, @2)); }
    | expr '-' expr                     { ACT($$ = g::binary(*parser, "-", $1, $3, @2)); }
    | expr '*' expr                     { ACT($$ = g::binary(*parser, "*", $1, $3, @2)); }
    | expr '/' expr                     { ACT($$ = g::binary(*parser, "/", $1, $3, @2)); }
    | expr '%' expr                     { ACT($$ = g::binary(*parser, "%", $1, $3, @2)); }
    | expr '^' expr                     { ACT($$ = g::binary(*parser, "^", $1, $3, @2)); }
    | expr '@' NAME '(' args ')'        { ACT($$ = g::methodCall(*parser, $1, $3, $5, @5)); }
    | expr '@' NAME                     { ACT($$ = g::property(*parser, $1, $3, @2, @3)); }
    | expr '[' args ']'                 { ACT($$ = g::index(*parser, $1, $3, @2, @3, @4)); }
    | '(' NAME ')' expr %prec CAST      { ACT($$ = g::cast(*parser, $2, $4, @3, @4)); }
    | expr NAME                         { ACT($$ = g::keyword(*parser, $1, $2, @1, @2)); }
    | expr BRACED                       { ACT($$ = g::keyword(*parser, $1, $2, @1, @2)); }
    | expr FLOAT                        { $$ = nullptr; ACT(g::missingOperator(*parser, $1, nullptr, nullptr, @1, @2)); }
    | expr INTEGER                      { $$ = nullptr; ACT(g::missingOperator(*parser, $1, nullptr, nullptr, @1, @2)); }
    | expr DQ_STRING                    { $$ = nullptr; ACT(g::missingOperator(*parser, $1, nullptr, $2, @1, @2)); }
    | expr SQ_STRING                    { $$ = nullptr; ACT(g::missingOperator(*parser, $1, nullptr, $2, @1, @2)); }
    | expr call                         { $$ = nullptr; ACT(g::missingOperator(*parser, $1, $2, nullptr, @1, @2)); }
    | expr '(' expr ')'                 { $$ = nullptr; ACT(g::missingOperator(*parser, $1, $3, nullptr, @1, @2)); }
    | expr '!'                          { $$ = nullptr; ACT(g::notAfterExpr($1)); }
    ;

prefixed
    : '-' primary                       { ACT($$ = g::prefix(*parser, "-", $2, @1)); }
    | '!' primary                       { ACT($$ = g::prefix(*parser, "!", $2, @1)); }
    | '-' prefixed                      { $$ = nullptr; ACT(g::prefixSequence(*parser, $2, @$)); }
    | '!' prefixed                      { $$ = nullptr; ACT(g::prefixSequence(*parser, $2, @$)); }
    ;

primary
    : DQ_STRING                         { ACT($$ = g::stringConst($1)); }
    | SQ_STRING                         { ACT($$ = g::stringConst($1)); }
    | FLOAT                             { ACT($$ = g::numberConst($1)); }
    | INTEGER                           { ACT($$ = g::numberConst(static_cast<double>($1))); }
    | NAME %prec LOW                    { ACT($$ = g::symbol(*parser, $1, @1)); }
    | BRACED                            { ACT($$ = g::braced(*parser, $1)); }
    | call
    | '(' expr ')'                      { $$ = $2; }
    ;

call
    : NAME '(' args ')'                 { ACT($$ = g::call(*parser, $1, $3)); }
    | NAME '(' ')'                      { ACT($$ = g::call(*parser, $1, nullptr)); }
    ;

args
    : expr                              { ACT($$ = g::firstArg($1)); }
    | args ',' expr                     { ACT($$ = g::nextArg($1, $3)); }
    ;

%%

static int Calclex(zun::CalcParser* parser) {
    int token = parser->nextToken();
    Calclloc = parser->location;
    return token;
}

// Syntax errors are reported by the error alternative of the program, and
// a stack that runs out by the return code: nothing to say here.
static void Calcerror(zun::CalcParser*, const char*) {}

int zun::CalcParser::parse() {
    // Parsers nest: a binder may compile a statement of its own while this
    // one is half-way. The automaton's globals are kept around each run.
    int savedChar = Calcchar;
    zun::CalcLocation savedLocation = Calclloc;
    int savedErrors = Calcnerrs;
    Calclloc = zun::CalcLocation();
    int result = Calcparse(this);
    lookahead = Calcchar;
    Calcchar = savedChar;
    Calclloc = savedLocation;
    Calcnerrs = savedErrors;
    return result;
}
