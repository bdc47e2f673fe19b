// The expression calculator.
//
// Every integer or real answer is an expression, evaluated where it is typed:
// `2*(3+4)`, `sqrt(2)/2`, `DV+1`, `int3.7`. The language has logical,
// relational, additive, multiplicative and power operators, "round" and "int",
// the constants PI and DV (the caller's default), and the functions SQRT, SIN,
// COS, TAN (radians) and DSIN, DCOS, DTAN (degrees). Values are logical,
// 32-bit integers or doubles; integer arithmetic wraps around.
//
//   EVALEX  evaluate an expression for a wanted type
//   CALCUL  the "#CALCULATOR" dialogue
//
// The scanner (EXTOKN), the push of a shifted token (EXPUSH) and the semantic
// actions (EXSEMA) live in calculator.cpp.
#pragma once

#include <string_view>

namespace kntr::framework {

// Value types of the calculator.
inline constexpr int ValueLogical = 1;
inline constexpr int ValueInteger = 2;
inline constexpr int ValueReal = 3;

// Levels of the value stack; an expression that needs more is a syntax error.
inline constexpr int ExpressionStackDepth = 128;
// Names are kept to this many characters.
inline constexpr int ExpressionNameLength = 6;

// EVALEX: evaluate `text` as a value of type `wanted`. The results hold the
// caller's defaults on entry ("DV" reads the one of the wanted type) and only
// the result of the wanted type is written, on success. status is set on any
// error: a type or value error has been shown through ERRSCN; a syntax error
// and an integer expression that yields a real are refused without a word.
void EVALEX(std::string_view text, int wanted, int& integerResult, double& realResult,
            bool& logicalResult, bool& status);

// CALCUL: ask for expressions and show their values until an empty answer
// or abort.
void CALCUL();

}  // namespace kntr::framework
