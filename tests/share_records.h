/* Shares and access lists as text, to compare them at a glance. */
#ifndef TESTS_SHARE_RECORDS_H
#define TESTS_SHARE_RECORDS_H

#include <cstring>
#include <string>
#include <vector>

#include "filesharing/shares.h"

/* " staff:7 family:5" */
inline std::string text_of(const ShareGroup* groups) {
  std::string text;
  for (; groups != nullptr; groups = groups->next) {
    text += std::string(" ") + groups->name + ":" + std::to_string(groups->rights);
  }
  return text;
}

/* "Music|0|1|Songs|/Music/| staff:7" */
inline std::string text_of(const ShareInfo& share) {
  return std::string(share.name) + "|" + std::to_string(share.suffixed) + "|" +
         std::to_string(share.volume) + "|" + share.comment + "|" + share.path + "|" +
         text_of(share.groups);
}

/* Sets the name and whatever else is given. */
inline ShareInfo share_record(const char* name, const char* comment = "", const char* path = "",
                              int volume = 0) {
  ShareInfo share{};
  strncpy(share.name, name, sizeof share.name - 1);
  strncpy(share.comment, comment, sizeof share.comment - 1);
  strncpy(share.path, path, sizeof share.path - 1);
  share.volume = volume;
  return share;
}

/* The code that listing gives when it fails, else the records. */
inline std::vector<std::string> listed(unsigned (*list)(ShareInfo**)) {
  ShareInfo* head = nullptr;
  if (const unsigned code = list(&head)) return {std::to_string(code), head ? "not empty" : ""};
  std::vector<std::string> records;
  for (const ShareInfo* share = head; share != nullptr; share = share->next) {
    records.push_back(text_of(*share));
  }
  FreeShareList(head);
  return records;
}

#endif
