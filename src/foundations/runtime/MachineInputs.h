// A machine's inputs, declared once. A machine lists its inputs in one X-macro, each entry
//
//   X(KIND, ORIGIN, Type, name, ...)
//
// KIND is what the machine makes of it:
//   CONST  a value set at construction and read by name(); the rest is its default in Inputs
//   INPUT  a watched record, a const pointer with its reactors (the rest names the Zel::Reactors)
//   LATE   as INPUT, but the constructor sets it itself, after its own initialization
//   ARG    a constructor argument only: the constructor takes it from Inputs itself
// ORIGIN is where its container takes it from when it builds the machine:
//   CALLER the container's caller gives it, under the same name (the container's Inputs has it)
//   CORE   the container's own Inputs already has it, under the same name
//   OWN    the container makes it
//
// From the one list come the constructor's argument struct, the members, the constructor's
// initializers and input settings, the fields a container adds to its own Inputs, and the copy
// from a container's Inputs:
//
//   #define WATCH_SM_INPUTS(X) X(CONST, CORE, Protocol::ContainerKey, containerKey) X(INPUT, ...)
//   struct Inputs { WATCH_SM_INPUTS(ZEL_INPUTS_FIELD) };        // in the machine
//   WATCH_SM_INPUTS(ZEL_INPUTS_CONST)                           // x(), one per constant
//   WATCH_SM_INPUTS(ZEL_INPUTS_WATCHED)                         // x(), xIs(p), one per input
//   WatchSm(Inputs const& in) : StateMachine() WATCH_SM_INPUTS(ZEL_INPUTS_INIT) {
//     WATCH_SM_INPUTS(ZEL_INPUTS_SET)                           // the inputs, in list order
//   }
//   struct Inputs : Core::Inputs { WATCH_SM_INPUTS(ZEL_INPUTS_CALLER_FIELD) };   // in the container
//   WatchSm::Inputs in;  WATCH_SM_INPUTS(ZEL_INPUTS_COPY)       // from inputs_, then OWN by hand
//
// The constants are initialized in list order, so their members are declared in list order
// (ZEL_INPUTS_CONST in one place) and before any other member the constructor initializes.
#pragma once

#include "foundations/runtime/Attribute.h"
#include "foundations/runtime/StateMachine.h"

// The field of Inputs.
#define ZEL_INPUTS_FIELD(KIND, ORIGIN, Type, name, ...) ZEL_INPUTS_FIELD_##KIND(Type, name, __VA_ARGS__)
#define ZEL_INPUTS_FIELD_CONST(Type, name, ...) Type name{__VA_ARGS__};
#define ZEL_INPUTS_FIELD_ARG(Type, name, ...) Type name{__VA_ARGS__};
#define ZEL_INPUTS_FIELD_INPUT(Type, name, ...) ::Quill::Ptr<Type const> name;
#define ZEL_INPUTS_FIELD_LATE(Type, name, ...) ::Quill::Ptr<Type const> name;

// The field, when the container's caller gives it.
#define ZEL_INPUTS_CALLER_FIELD(KIND, ORIGIN, Type, name, ...) \
  ZEL_INPUTS_IF_##ORIGIN(ZEL_INPUTS_FIELD_##KIND(Type, name, __VA_ARGS__))
#define ZEL_INPUTS_IF_CALLER(...) __VA_ARGS__
#define ZEL_INPUTS_IF_CORE(...)
#define ZEL_INPUTS_IF_OWN(...)

// The member of a constant: name().
#define ZEL_INPUTS_CONST(KIND, ORIGIN, Type, name, ...) ZEL_INPUTS_CONST_##KIND(Type, name)
#define ZEL_INPUTS_CONST_CONST(Type, name) ZEL_CONST(Type, name)
#define ZEL_INPUTS_CONST_ARG(Type, name)
#define ZEL_INPUTS_CONST_INPUT(Type, name)
#define ZEL_INPUTS_CONST_LATE(Type, name)

// The member of a watched input: name(), nameIs(p), with its reactors.
#define ZEL_INPUTS_WATCHED(KIND, ORIGIN, Type, name, ...) ZEL_INPUTS_WATCHED_##KIND(Type, name, __VA_ARGS__)
#define ZEL_INPUTS_WATCHED_CONST(Type, name, ...)
#define ZEL_INPUTS_WATCHED_ARG(Type, name, ...)
#define ZEL_INPUTS_WATCHED_INPUT(Type, name, ...) ZEL_INPUT(Type, name, __VA_ARGS__)
#define ZEL_INPUTS_WATCHED_LATE(Type, name, ...) ZEL_INPUT(Type, name, __VA_ARGS__)

// The constructor's initializer of a constant, from its argument `in`; each begins with a comma.
#define ZEL_INPUTS_INIT(KIND, ORIGIN, Type, name, ...) ZEL_INPUTS_INIT_##KIND(name)
#define ZEL_INPUTS_INIT_CONST(name) , name##_(in.name)
#define ZEL_INPUTS_INIT_ARG(name)
#define ZEL_INPUTS_INIT_INPUT(name)
#define ZEL_INPUTS_INIT_LATE(name)

// The constructor's setting of a watched input (not a late one), from its argument `in`.
#define ZEL_INPUTS_SET(KIND, ORIGIN, Type, name, ...) ZEL_INPUTS_SET_##KIND(name)
#define ZEL_INPUTS_SET_CONST(name)
#define ZEL_INPUTS_SET_ARG(name)
#define ZEL_INPUTS_SET_INPUT(name) name##Is(in.name);
#define ZEL_INPUTS_SET_LATE(name)

// In a container: the field of the machine's Inputs `to` from the container's Inputs `from`,
// unless the container makes it.
#define ZEL_INPUTS_COPY(KIND, ORIGIN, Type, name, ...) ZEL_INPUTS_COPY_##ORIGIN(name)
#define ZEL_INPUTS_COPY_CALLER(name) to.name = from.name;
#define ZEL_INPUTS_COPY_CORE(name) to.name = from.name;
#define ZEL_INPUTS_COPY_OWN(name)
