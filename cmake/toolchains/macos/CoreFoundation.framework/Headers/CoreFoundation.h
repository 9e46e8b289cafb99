// What the library calls of the system's Core Foundation, declared here to compile without Apple's
// kit; a build on a Mac has the system's own header. Signatures: Apple's documentation of CFString,
// CFURL and CFType.
#ifndef CORVANTIS_CORE_FOUNDATION_H
#define CORVANTIS_CORE_FOUNDATION_H

#ifdef __cplusplus
extern "C" {
#endif

typedef long CFIndex;
typedef unsigned char Boolean;
typedef unsigned int CFStringEncoding;
typedef CFIndex CFURLPathStyle;
typedef const void* CFTypeRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFURL* CFURLRef;

enum { kCFStringEncodingMacRoman = 0 };
enum { kCFURLPOSIXPathStyle = 0, kCFURLHFSPathStyle = 1 };

extern const CFAllocatorRef kCFAllocatorDefault;

CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                      CFStringEncoding encoding);
CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef path,
                                       CFURLPathStyle style, Boolean isDirectory);
CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);
Boolean CFStringGetCString(CFStringRef text, char* buffer, CFIndex size, CFStringEncoding encoding);
void CFRelease(CFTypeRef object);

#ifdef __cplusplus
}
#endif

#endif
