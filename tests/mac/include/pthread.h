#pragma once

extern "C" {

typedef struct _opaque_pthread_t* pthread_t;
typedef struct _opaque_pthread_mutex_t {
    long signature;
    char opaque[56];
} pthread_mutex_t;
typedef struct _opaque_pthread_cond_t {
    long signature;
    char opaque[40];
} pthread_cond_t;
typedef struct _opaque_pthread_attr_t pthread_mutexattr_t;
typedef struct _opaque_pthread_attr_t pthread_condattr_t;

int pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes);
int pthread_mutex_lock(pthread_mutex_t* mutex);
int pthread_mutex_unlock(pthread_mutex_t* mutex);
int pthread_cond_init(pthread_cond_t* condition, const pthread_condattr_t* attributes);
int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex);
int pthread_cond_broadcast(pthread_cond_t* condition);
}
