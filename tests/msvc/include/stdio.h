/* What the public header takes from Microsoft's file of this name. */
#pragma once
typedef struct _iobuf FILE;
