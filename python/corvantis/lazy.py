"""Attributes that are worked out when they are first asked for."""
from __future__ import annotations

from collections.abc import Callable
from typing import Any, Generic, TypeVar, overload

Value = TypeVar("Value")


class lazy(Generic[Value]):
    """As `functools.cached_property`, but never with a lock, which the standard library's has
    before Python 3.12: a child forked while another thread holds it would wait for ever."""

    def __init__(self, func: Callable[[Any], Value]) -> None:
        self.func = func
        self.__doc__ = func.__doc__

    def __set_name__(self, owner: type[Any], name: str) -> None:
        self.name = name

    @overload
    def __get__(self, instance: None, owner: type[Any]) -> lazy[Value]: ...

    @overload
    def __get__(self, instance: object, owner: type[Any]) -> Value: ...

    def __get__(self, instance: object | None, owner: type[Any]) -> lazy[Value] | Value:
        if instance is None:
            return self
        value = instance.__dict__[self.name] = self.func(instance)
        return value
