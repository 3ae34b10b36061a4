// Rewrites method declarations for registration as extension methods of a module. Each result is a
// new text that the caller frees; null when it cannot be allocated.
#pragma once

// Inserts a leading parameter "extends ref as <className>". Texts of more than 998 bytes (999 where
// the declaration has neither "(" nor a blank) are cut off. Deliberate: an empty parameter list
// gives "F(extends ref as C, ) as T", with its dangling separator.
char* AddClassParameter(const char* declaration, const char* className);

// Turns an extended declaration into that of the assigns form: a last parameter "assigns value"
// with the result's type. Null as well when the text has neither ")" nor a blank. Cut off at 998
// bytes.
char* AddAssignsParameter(const char* extendedDeclaration);
