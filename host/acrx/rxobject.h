// AcRxObject: the root of every class that the host knows by name at run time.
#pragma once

class AcRxClass;

class AcRxObject
{
public:
    virtual ~AcRxObject() = default;

    /// The run-time class of this object; never null.
    virtual AcRxClass *isA() const = 0;
    bool isKindOf(const AcRxClass *ancestor) const;

protected:
    AcRxObject() = default;
    AcRxObject(const AcRxObject &) = default;
    AcRxObject &operator=(const AcRxObject &) = default;
};

/// `object` as a T when its run-time class is T or derives from it, else null.
template <class T>
T *acrxCast(AcRxObject *object)
{
    return object && object->isKindOf(T::desc()) ? static_cast<T *>(object) : nullptr;
}
template <class T>
const T *acrxCast(const AcRxObject *object)
{
    return object && object->isKindOf(T::desc()) ? static_cast<const T *>(object) : nullptr;
}
