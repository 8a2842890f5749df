#ifndef TOLVAR_VARUNDO_CLIENT_EXPORT_H
#define TOLVAR_VARUNDO_CLIENT_EXPORT_H

#include <QtGlobal>

/// Marks what controller software may use. Everything without it is hidden in the shared library.
#if defined(ZEL_BUILDING_CLIENT)
    #define ZEL_CLIENT_EXPORT Q_DECL_EXPORT
#else
    #define ZEL_CLIENT_EXPORT Q_DECL_IMPORT
#endif

#endif
