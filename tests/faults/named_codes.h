/* The result codes that the comment of a function's declaration names. */
#ifndef TESTS_FAULTS_NAMED_CODES_H
#define TESTS_FAULTS_NAMED_CODES_H

#include <map>
#include <string>

/* Code to name ("34", FSH_USER_NOT_ADDED; "0" for codes without one). -1 is 4294967295. Codes of
 * the functions that the comment refers to ("the results of X") are among them. */
const std::map<unsigned, std::string>& named_codes(const std::string& function);

/* Every exported function, and the header that declares it ("users.h"). */
const std::map<std::string, std::string>& exported_functions();

#endif
