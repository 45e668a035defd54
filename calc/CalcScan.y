/* The scanning grammar: the expression grammar with its symbols left unbound.
 *
 * It only decides where an expression ends and what kind of expression the
 * whole input was; it builds nothing. It has no OPER rule, no cast form, no
 * error forms, and no repeated prefix operators. Its stack starts at 200
 * entries and doubles up to 10000.
 */
%code requires {
namespace zun { class CalcScanner; }
}

%{
#include "calc/CalcScanner.h"

#define YYINITDEPTH 200
#define YYMAXDEPTH 10000

static int CalcScanlex(zun::CalcScanner* scanner);
static void CalcScanerror(zun::CalcScanner* scanner, const char* message);
%}

%define api.prefix {CalcScan}
%parse-param {zun::CalcScanner* scanner}
%lex-param {zun::CalcScanner* scanner}

%token SQ_STRING 258 DQ_STRING 259 INTEGER 260 FLOAT 261 NAME 262 BRACED 263 INVALID 264
%token EQ 265 NE 266 GE 267 LE 268 AND 269 OR 270 SHR 271 SHL 272 OPER 273

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
%precedence '@' '[' NAME BRACED

%%

start
    : program                       { scanner->exprKind = $1; }
    ;

program
    : %empty                        { $$ = 0; }
    | expr                          { $$ = $1; }
    | NAME '=' expr ';' program     { $$ = 7; }
    | NAME '=' expr                 { $$ = 7; }
    ;

expr
    : primary                       { $$ = $1; }
    | '-' primary                   { $$ = ($2 == 1 || $2 == 2) ? $2 : 7; }
    | '!' primary                   { $$ = 7; }
    | expr '?' expr ':' expr        { $$ = 7; }
    | expr OR expr                  { $$ = 7; }
    | expr AND expr                 { $$ = 7; }
    | expr '|' expr                 { $$ = 7; }
    | expr '&' expr                 { $$ = 7; }
    | expr EQ expr                  { $$ = 7; }
    | expr NE expr                  { $$ = 7; }
    | expr '~' expr                 { $$ = 7; }
    | expr '<' expr                 { $$ = 7; }
    | expr '>' expr                 { $$ = 7; }
    | expr LE expr                  { $$ = 7; }
    | expr GE expr                  { $$ = 7; }
    | expr SHR expr                 { $$ = 7; }
    | expr SHL expr                 { $$ = 7; }
    | expr '+' expr                 { $$ = 7; }
    | expr '-' expr                 { $$ = 7; }
    | expr '*' expr                 { $$ = 7; }
    | expr '/' expr                 { $$ = 7; }
    | expr '%' expr                 { $$ = 7; }
    | expr '^' expr                 { $$ = 7; }
    | expr '@' NAME '(' args ')'    { $$ = 7; }
    | expr '@' NAME                 { $$ = 7; }
    | expr '[' args ']'             { $$ = 7; }
    | expr NAME                     { $$ = 7; }
    | expr BRACED                   { $$ = 7; }
    ;

primary
    : INTEGER                       { $$ = 1; }
    | FLOAT                         { $$ = 2; }
    | DQ_STRING                     { $$ = 3; }
    | SQ_STRING                     { $$ = 4; }
    | NAME                          { $$ = 5; }
    | BRACED                        { $$ = 6; }
    | NAME '(' args ')'             { $$ = 7; }
    | NAME '(' ')'                  { $$ = 7; }
    | '(' expr ')'                  { $$ = 7; }
    ;

args
    : expr
    | args ',' expr
    ;

%%

// Tokens are only counted here: a string-valued token's text is dropped at once.
static int CalcScanlex(zun::CalcScanner* scanner) {
    int token = scanner->nextToken();
    if (zun::CalcToken::hasString(token)) {
        delete Calclval.str;
        Calclval.str = nullptr;
    }
    return token;
}

static void CalcScanerror(zun::CalcScanner* scanner, const char* message) {
    scanner->error(message);
}

int zun::CalcScanner::parse() {
    return CalcScanparse(this);
}
