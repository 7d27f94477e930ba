/* Network services. */
#ifndef FILESHARING_SERVICES_H
#define FILESHARING_SERVICES_H

#include "filesharing/results.h"
#include "filesharing/types.h"

FSH_BEGIN_DECLS

/* ---- Samba ---------------------------------------------------------------------------------- */
FSH_API void omitIpSpace(char* dst, const char* src, int len);
FSH_API unsigned ReadSambaConf(SambaSettings* settings);
FSH_API unsigned SaveSambaConf(SambaSettings* settings);
FSH_API unsigned SetSMB(void);
FSH_API unsigned ResetGuest(void);
FSH_API unsigned ResetPrinter(void);

/* ---- FTP ------------------------------------------------------------------------------------ */
FSH_API int ReadFTPConf(FtpSettings* settings);
FSH_API int SaveFTPConf(const FtpSettings* settings);
FSH_API unsigned ResetFTP(void);

/* ---- AFP and mDNS --------------------------------------------------------------------------- */
FSH_API unsigned ReadAFPConf(AfpSettings* settings);
FSH_API int SaveAFPConf(const AfpSettings* settings);
FSH_API int IsShUsedByTM(const char* share);
FSH_API int ResetmDNSConf(void);
FSH_API unsigned SetAFPDConf(AfpSettings settings);
FSH_API unsigned ResetAFP(void);
FSH_API void debug_afp(const char* format, ...) __attribute__((format(printf, 1, 2)));

/* ---- HTTPS tunnel --------------------------------------------------------------------------- */
FSH_API int ResetHttps(void);

FSH_END_DECLS

#endif
