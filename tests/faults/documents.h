/* The public headers and the lists of what they export, by name: "users". */
#ifndef TESTS_FAULTS_DOCUMENTS_H
#define TESTS_FAULTS_DOCUMENTS_H

#include <map>
#include <string>

extern const std::map<std::string, std::string> kHeaders;
extern const std::map<std::string, std::string> kExports;

#endif
