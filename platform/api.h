/* What the headers of the platform libraries share: C linkage and exported symbols. */
#ifndef PLATFORM_API_H
#define PLATFORM_API_H

#define PLATFORM_API __attribute__((visibility("default")))

#ifdef __cplusplus
#define PLATFORM_BEGIN_DECLS extern "C" {
#define PLATFORM_END_DECLS }
#define PLATFORM_LAYOUT(condition) static_assert(condition, #condition)
#else
#define PLATFORM_BEGIN_DECLS
#define PLATFORM_END_DECLS
#define PLATFORM_LAYOUT(condition) _Static_assert(condition, #condition)
#endif

#endif
