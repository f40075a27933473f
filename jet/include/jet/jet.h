/* The engine for C, and for every language that can call C.
 *
 * Every function that can fail returns JET_OK or the kind of its error, and writes the kind, the
 * customary number and a sentence into *error unless that is a null pointer. Nothing is written to
 * the other results of a call that failed. Texts are UTF-8 and end with a zero byte; dates count
 * days since 1899-12-30 with the time of day as fraction; currency counts ten-thousandths; decimals
 * are texts like "-12.50", so that no digit of them is lost.
 *
 * Texts and bytes that are read go into a buffer of the caller's: *size is the size of the whole
 * value (of a text, without its zero byte), whether or not it fits. A buffer that is too small
 * holds the beginning; a null pointer with capacity 0 only asks for the size. *is_null is 1 where
 * the field is null, and the value is then left alone; it may be a null pointer.
 *
 * A handle is used by one thread at a time. jet_close, jet_recordset_close and the two ends of a
 * transaction free their handle whatever they return; a record set that outlives its database only
 * says JET_CLOSED. */
#ifndef JET_JET_H
#define JET_JET_H

#include <stddef.h>
#include <stdint.h>

/* What makes a function visible outside of a shared library; said by the build of one. */
#ifndef JET_API
#define JET_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef struct jet_database jet_database;
typedef struct jet_recordset jet_recordset;
typedef struct jet_transaction jet_transaction;

/* What can go wrong, as in jet/error.h. */
enum jet_kind {
    JET_OK = 0,
    JET_FILE_NOT_FOUND = 1,
    JET_FILE_IN_USE,
    JET_NOT_A_DATABASE,
    JET_UNSUPPORTED_VERSION,
    JET_ENCRYPTED,
    JET_DAMAGED,
    JET_READ_ONLY,
    JET_PERMISSION_DENIED,
    JET_DISK_FULL,
    JET_IO,
    JET_FILE_TOO_LARGE,
    JET_NO_CURRENT_RECORD,
    JET_DUPLICATE_KEY,
    JET_NO_EDIT_BEGUN,
    JET_NULL_NOT_ALLOWED,
    JET_NO_SUCH_TABLE,
    JET_NO_SUCH_INDEX,
    JET_NO_SUCH_FIELD,
    JET_ALREADY_EXISTS,
    JET_BAD_NAME,
    JET_SYNTAX,
    JET_TYPE_MISMATCH,
    JET_OVERFLOW,
    JET_TEXT_TOO_LONG,
    JET_RECORD_TOO_LARGE,
    JET_UNSUPPORTED,
    JET_CLOSED,
    JET_OUT_OF_MEMORY,
    JET_TRANSACTION_OPEN,
    JET_NO_TRANSACTION,
    JET_ZERO_LENGTH_NOT_ALLOWED,
    JET_RULE_VIOLATED,
    JET_RELATED_RECORDS,
    JET_NO_RELATED_RECORD,
    JET_BAD_ARGUMENT = 1000 /* a null pointer where there must be something, an unknown constant */
};

typedef struct jet_error {
    int32_t kind;      /* enum jet_kind */
    int32_t number;    /* the customary one, 0 for JET_BAD_ARGUMENT */
    char message[512]; /* cut at the end of a character when it is longer */
} jet_error;

/* Types of fields and of values. */
enum jet_type {
    JET_NULL = 0,
    JET_BOOLEAN = 0x01,
    JET_BYTE = 0x02,
    JET_INTEGER = 0x03, /* 16 bits */
    JET_LONG = 0x04,    /* 32 bits */
    JET_CURRENCY = 0x05,
    JET_SINGLE = 0x06,
    JET_DOUBLE = 0x07,
    JET_DATE = 0x08,
    JET_BINARY = 0x09,
    JET_TEXT = 0x0A,
    JET_OLE = 0x0B,
    JET_MEMO = 0x0C,
    JET_GUID = 0x0F,        /* 16 bytes */
    JET_DECIMAL = 0x10,     /* not in a file of version 3 */
    JET_FIXED_BINARY = 0x11 /* in files of others only */
};

/* A value that is handed in: of a key, of a query's question mark, of a field. */
typedef struct jet_value {
    int32_t type; /* JET_NULL, JET_BOOLEAN, JET_LONG, JET_CURRENCY, JET_DOUBLE, JET_DATE, JET_TEXT,
                     JET_BINARY, JET_GUID or JET_DECIMAL */
    int32_t long_value;     /* JET_BOOLEAN, JET_LONG */
    int64_t currency_value; /* JET_CURRENCY */
    double double_value;    /* JET_DOUBLE, JET_DATE */
    const void* data;       /* JET_TEXT and JET_DECIMAL (zero-terminated), JET_BINARY, JET_GUID */
    size_t size;            /* of JET_BINARY, in bytes */
} jet_value;

typedef struct jet_column {
    const char* name;
    int32_t type;
    int32_t length;      /* characters of a text, bytes of a binary */
    int32_t auto_number; /* JET_LONG only */
    int32_t required;
    int32_t allow_zero_length; /* texts and memos */
    int32_t precision;         /* JET_DECIMAL: digits, up to 28; 0 for 18 */
    int32_t scale;             /* JET_DECIMAL: how many of them stand behind the point */
} jet_column;

typedef struct jet_index {
    const char* name;
    const char* const* columns;
    const int32_t* descending; /* one for each column, or a null pointer for none */
    size_t column_count;
    int32_t primary;
    int32_t unique;
} jet_index;

/* Zeros mean the library's own choice. */
typedef struct jet_options {
    int32_t read_only;
    int32_t shared; /* with read_only: others may open the file for reading, too */
    uint64_t cache_bytes;
    uint64_t changed_bytes;
    uint64_t log_bytes;
} jet_options;

/* What opening found; see Recovery in jet/database.h. */
typedef struct jet_recovery {
    int32_t applied; /* operations of an interrupted run were recovered */
    int32_t foreign_log_ignored;
    uint64_t operations;
    uint64_t discarded_bytes;
    size_t kept_logs; /* logs that hold changes which the file lacks; jet_kept_log names them */
} jet_recovery;

/* The library's version, "1.0.0". */
JET_API const char* jet_version(void);

/* Files. `version` is 3 or 4. `options` may be a null pointer. */
JET_API int jet_open(const char* path, const jet_options* options, jet_database** database,
                     jet_error* error);
JET_API int jet_create(const char* path, int version, const jet_options* options,
                       jet_database** database, jet_error* error);
JET_API int jet_close(jet_database* database, jet_error* error);
JET_API int jet_make_durable(jet_database* database, jet_error* error);

JET_API int jet_opening_recovery(jet_database* database, jet_recovery* recovery, jet_error* error);
JET_API int jet_kept_log(jet_database* database, size_t log, char* path, size_t capacity,
                         size_t* size, jet_error* error);

/* Tables and the names of their indexes, counted from 0. */
JET_API int jet_table_count(jet_database* database, size_t* count, jet_error* error);
JET_API int jet_table_name(jet_database* database, size_t table, char* name, size_t capacity,
                           size_t* size, jet_error* error);
JET_API int jet_index_count(jet_database* database, const char* table, size_t* count,
                            jet_error* error);
JET_API int jet_index_name(jet_database* database, const char* table, size_t index, char* name,
                           size_t capacity, size_t* size, jet_error* error);
JET_API int jet_create_table(jet_database* database, const char* name, const jet_column* columns,
                             size_t column_count, const jet_index* indexes, size_t index_count,
                             jet_error* error);

/* Record sets: of a table, or of a query with one value for each of its question marks. */
JET_API int jet_open_table(jet_database* database, const char* name, jet_recordset** recordset,
                           jet_error* error);
JET_API int jet_open_query(jet_database* database, const char* sql, const jet_value* parameters,
                           size_t count, jet_recordset** recordset, jet_error* error);
JET_API void jet_recordset_close(jet_recordset* recordset);
JET_API int jet_record_count(jet_recordset* recordset, int32_t* count, jet_error* error);

/* Columns, counted from 0. */
JET_API int jet_field_count(jet_recordset* recordset, size_t* count, jet_error* error);
JET_API int jet_field_name(jet_recordset* recordset, size_t field, char* name, size_t capacity,
                           size_t* size, jet_error* error);
JET_API int jet_field_type(jet_recordset* recordset, size_t field, int32_t* type, jet_error* error);
/* All that is known of it but the name, for which there is a null pointer. */
JET_API int jet_describe_field(jet_recordset* recordset, size_t field, jet_column* column,
                               jet_error* error);
JET_API int jet_find_field(jet_recordset* recordset, const char* name, size_t* field,
                           jet_error* error);

/* Moving. A record set opens on its first record. An empty index name means stored order. */
JET_API int jet_set_index(jet_recordset* recordset, const char* index, jet_error* error);
JET_API int jet_move_first(jet_recordset* recordset, jet_error* error);
JET_API int jet_move_last(jet_recordset* recordset, jet_error* error);
JET_API int jet_move_next(jet_recordset* recordset, jet_error* error);
JET_API int jet_move_previous(jet_recordset* recordset, jet_error* error);
JET_API int jet_is_bof(jet_recordset* recordset, int* is_bof, jet_error* error);
JET_API int jet_is_eof(jet_recordset* recordset, int* is_eof, jet_error* error);

enum jet_comparison { JET_EQUAL, JET_GREATER_OR_EQUAL, JET_GREATER, JET_LESS, JET_LESS_OR_EQUAL };
/* By the leading columns of the index that is set. */
JET_API int jet_seek(jet_recordset* recordset, int comparison, const jet_value* key, size_t count,
                     int* found, jet_error* error);

/* Reading the current record; numbers of other types are converted. */
JET_API int jet_get_boolean(jet_recordset* recordset, size_t field, int* value, int* is_null,
                            jet_error* error);
JET_API int jet_get_long(jet_recordset* recordset, size_t field, int32_t* value, int* is_null,
                         jet_error* error);
JET_API int jet_get_double(jet_recordset* recordset, size_t field, double* value, int* is_null,
                           jet_error* error);
JET_API int jet_get_currency(jet_recordset* recordset, size_t field, int64_t* value, int* is_null,
                             jet_error* error);
/* Everything but bytes can be read as text; that of a decimal and of a currency has all its digits.
 */
JET_API int jet_get_text(jet_recordset* recordset, size_t field, char* text, size_t capacity,
                         size_t* size, int* is_null, jet_error* error);
/* Binary and OLE values, and GUIDs. */
JET_API int jet_get_bytes(jet_recordset* recordset, size_t field, void* bytes, size_t capacity,
                          size_t* size, int* is_null, jet_error* error);
/* A part of an OLE value, which is not read as a whole: `offset` and *size in bytes; *size is that
 * of the part, 0 behind the end. Parts that follow each other take the time of reading the value
 * once. */
JET_API int jet_get_part(jet_recordset* recordset, size_t field, uint64_t offset, void* bytes,
                         size_t capacity, size_t* size, int* is_null, jet_error* error);
/* The same of a memo, in UTF-16: `offset`, `capacity` and *size count units of two bytes. */
JET_API int jet_get_memo_part(jet_recordset* recordset, size_t field, uint64_t offset,
                              uint16_t* units, size_t capacity, size_t* size, int* is_null,
                              jet_error* error);

/* Changing. */
JET_API int jet_add_new(jet_recordset* recordset, jet_error* error);
JET_API int jet_edit(jet_recordset* recordset, jet_error* error);
JET_API int jet_set(jet_recordset* recordset, size_t field, const jet_value* value,
                    jet_error* error);
JET_API int jet_set_null(jet_recordset* recordset, size_t field, jet_error* error);
JET_API int jet_set_boolean(jet_recordset* recordset, size_t field, int value, jet_error* error);
JET_API int jet_set_long(jet_recordset* recordset, size_t field, int32_t value, jet_error* error);
JET_API int jet_set_double(jet_recordset* recordset, size_t field, double value, jet_error* error);
JET_API int jet_set_currency(jet_recordset* recordset, size_t field, int64_t value,
                             jet_error* error);
JET_API int jet_set_decimal(jet_recordset* recordset, size_t field, const char* decimal,
                            jet_error* error);
JET_API int jet_set_date(jet_recordset* recordset, size_t field, double days, jet_error* error);
JET_API int jet_set_text(jet_recordset* recordset, size_t field, const char* text,
                         jet_error* error);
JET_API int jet_set_bytes(jet_recordset* recordset, size_t field, const void* bytes, size_t size,
                          jet_error* error);
/* Adds a part to an OLE value or, as text of whole characters, to a memo; the first one of an edit
 * begins it. A long value takes little memory in this way: its parts wait in a temporary file
 * beside the database, so besides the errors of setting there are those of writing. */
JET_API int jet_append_bytes(jet_recordset* recordset, size_t field, const void* bytes, size_t size,
                             jet_error* error);
JET_API int jet_append_text(jet_recordset* recordset, size_t field, const char* text,
                            jet_error* error);
JET_API int jet_update(jet_recordset* recordset, jet_error* error);
JET_API int jet_cancel_update(jet_recordset* recordset, jet_error* error);
JET_API int jet_delete(jet_recordset* recordset, jet_error* error);

/* Transactions: any number of changes, all or none. */
JET_API int jet_begin(jet_database* database, jet_transaction** transaction, jet_error* error);
JET_API int jet_commit(jet_transaction* transaction, jet_error* error);
JET_API void jet_rollback(jet_transaction* transaction);

#ifdef __cplusplus
}
#endif

#endif
