/* The version of these headers, and the one place where the product's version is written: the
 * build reads it here.
 *
 * Which version runs can be seen without calling anything. KoLink.dll says it in its version
 * resource (file properties, GetFileVersionInfo). libkolink.so carries its file name,
 * libkolink.so.1.0.0 behind the link libkolink.so.1, and the text "@(#)KoLink 1.0.0", which
 * `strings` finds. */
#ifndef KOLINK_VERSION_H
#define KOLINK_VERSION_H

#define KOLINK_VERSION_MAJOR 1 /* changes when a host has to be changed or built again */
#define KOLINK_VERSION_MINOR 0 /* changes when something is added */
#define KOLINK_VERSION_PATCH 0

#define KOLINK_VERSION_TEXT_(number) #number
#define KOLINK_VERSION_TEXT(number) KOLINK_VERSION_TEXT_(number)
#define KOLINK_VERSION                        \
    KOLINK_VERSION_TEXT(KOLINK_VERSION_MAJOR) \
    "." KOLINK_VERSION_TEXT(KOLINK_VERSION_MINOR) "." KOLINK_VERSION_TEXT(KOLINK_VERSION_PATCH)

#endif
