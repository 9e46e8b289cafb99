/* What the public header takes from Microsoft's file of this name. */
#pragma once
struct timeval {
    long tv_sec;
    long tv_usec;
};
