#pragma once
// The root of the program's exceptions.
//
// Every failure of the library travels as an object of this family. It names the function that found it, can be
// copied and thrown again with its true type, printed in one layout, and turned into bytes and back.

#include <memory>
#include <string>

namespace zvp {

class Exception {
public:
    virtual ~Exception() = default;

    /// Throws a copy of this object as its own class.
    [[noreturn]] virtual void fire() const = 0;

    /// The name under which the class is registered and printed.
    virtual const char* get_typename() const = 0;

    virtual std::unique_ptr<Exception> clone() const = 0;

    /// Prints the report on the console, in bright red: a heading, the body of the class, blank lines.
    virtual void print() const;

    /// Appends the object's bytes; rebuild_exception() reads them back. The type's name isn't among them.
    virtual void serialize(std::string& bytes) const = 0;

protected:
    Exception() = default;
    Exception(const Exception&) = default;
    Exception& operator=(const Exception&) = default;

    virtual const char* heading() const { return "Exception Encountered"; }
    virtual void print_body() const = 0;
};

/// Gives `Class` its own fire(), get_typename() and clone(). `Class` has a constant `type_name` and derives
/// from ExceptionOf<Class, Base>.
template <class Class, class Base>
class ExceptionOf : public Base {
public:
    using Base::Base;

    [[noreturn]] void fire() const override { throw Class(self()); }
    const char* get_typename() const override { return Class::type_name; }
    std::unique_ptr<Exception> clone() const override { return std::make_unique<Class>(self()); }

private:
    const Class& self() const { return static_cast<const Class&>(*this); }
};

} // namespace zvp
