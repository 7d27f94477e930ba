// What the FTP settings make of the lines of the files that the FTP daemon and inetd read.
#ifndef FILESHARING_SERVICES_FTP_RULES_H
#define FILESHARING_SERVICES_FTP_RULES_H

#include <vector>

#include "conf/line_rules.h"
#include "filesharing/types.h"

namespace filesharing {

std::vector<LineRule> ftp_rules_of_services(const FtpSettings& settings);
std::vector<LineRule> ftp_rules_of_inetd(const FtpSettings& settings);

// Guests have no place in the list of users that vsftpd lets in: with them the list is off.
std::vector<LineRule> ftp_rules_of_vsftpd(const FtpSettings& settings, bool lets_guests_in);

}  // namespace filesharing

#endif
