#ifndef TOLVAR_VARUNDO_EXPORT_H
#define TOLVAR_VARUNDO_EXPORT_H

#include <QtGlobal>

/// Marks what a host may use. Everything without it is hidden in the shared library.
#if defined(VARUNDO_BUILDING_SERVER)
    #define VARUNDO_EXPORT Q_DECL_EXPORT
#else
    #define VARUNDO_EXPORT Q_DECL_IMPORT
#endif

#endif
