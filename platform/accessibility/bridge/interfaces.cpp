#include "accessibility/bridge/interfaces.h"

namespace {

const char description[] = R"xml(<node>
<interface name="org.a11y.atspi.Accessible">
 <property name="Name" type="s" access="read"/>
 <property name="Description" type="s" access="read"/>
 <property name="Parent" type="(so)" access="read"/>
 <property name="ChildCount" type="i" access="read"/>
 <property name="Locale" type="s" access="read"/>
 <property name="AccessibleId" type="s" access="read"/>
 <property name="version" type="u" access="read"/>
 <method name="GetChildAtIndex"><arg type="i"/><arg type="(so)" direction="out"/></method>
 <method name="GetChildren"><arg type="a(so)" direction="out"/></method>
 <method name="GetIndexInParent"><arg type="i" direction="out"/></method>
 <method name="GetRelationSet"><arg type="a(ua(so))" direction="out"/></method>
 <method name="GetRole"><arg type="u" direction="out"/></method>
 <method name="GetRoleName"><arg type="s" direction="out"/></method>
 <method name="GetLocalizedRoleName"><arg type="s" direction="out"/></method>
 <method name="GetState"><arg type="au" direction="out"/></method>
 <method name="GetAttributes"><arg type="a{ss}" direction="out"/></method>
 <method name="GetApplication"><arg type="(so)" direction="out"/></method>
 <method name="GetInterfaces"><arg type="as" direction="out"/></method>
</interface>
<interface name="org.a11y.atspi.Application">
 <property name="ToolkitName" type="s" access="read"/>
 <property name="Version" type="s" access="read"/>
 <property name="AtspiVersion" type="s" access="read"/>
 <property name="Id" type="i" access="readwrite"/>
 <method name="GetLocale"><arg type="u"/><arg type="s" direction="out"/></method>
</interface>
<interface name="org.a11y.atspi.Component">
 <method name="Contains"><arg type="i"/><arg type="i"/><arg type="u"/>
  <arg type="b" direction="out"/></method>
 <method name="GetAccessibleAtPoint"><arg type="i"/><arg type="i"/><arg type="u"/>
  <arg type="(so)" direction="out"/></method>
 <method name="GetExtents"><arg type="u"/><arg type="(iiii)" direction="out"/></method>
 <method name="GetPosition"><arg type="u"/><arg type="i" direction="out"/>
  <arg type="i" direction="out"/></method>
 <method name="GetSize"><arg type="i" direction="out"/><arg type="i" direction="out"/></method>
 <method name="GetLayer"><arg type="u" direction="out"/></method>
 <method name="GetMDIZOrder"><arg type="n" direction="out"/></method>
 <method name="GetAlpha"><arg type="d" direction="out"/></method>
 <method name="GrabFocus"><arg type="b" direction="out"/></method>
 <method name="ScrollTo"><arg type="u"/><arg type="b" direction="out"/></method>
</interface>
<interface name="org.a11y.atspi.Action">
 <property name="NActions" type="i" access="read"/>
 <method name="GetDescription"><arg type="i"/><arg type="s" direction="out"/></method>
 <method name="GetName"><arg type="i"/><arg type="s" direction="out"/></method>
 <method name="GetLocalizedName"><arg type="i"/><arg type="s" direction="out"/></method>
 <method name="GetKeyBinding"><arg type="i"/><arg type="s" direction="out"/></method>
 <method name="GetActions"><arg type="a(sss)" direction="out"/></method>
 <method name="DoAction"><arg type="i"/><arg type="b" direction="out"/></method>
</interface>
<interface name="org.a11y.atspi.Selection">
 <property name="NSelectedChildren" type="i" access="read"/>
 <method name="GetSelectedChild"><arg type="i"/><arg type="(so)" direction="out"/></method>
 <method name="IsChildSelected"><arg type="i"/><arg type="b" direction="out"/></method>
 <method name="SelectChild"><arg type="i"/><arg type="b" direction="out"/></method>
</interface>
<interface name="org.a11y.atspi.Text">
 <property name="CharacterCount" type="i" access="read"/>
 <property name="CaretOffset" type="i" access="read"/>
 <method name="GetText"><arg type="i"/><arg type="i"/><arg type="s" direction="out"/></method>
 <method name="SetCaretOffset"><arg type="i"/><arg type="b" direction="out"/></method>
 <method name="GetCharacterAtOffset"><arg type="i"/><arg type="i" direction="out"/></method>
 <method name="GetStringAtOffset"><arg type="i"/><arg type="u"/>
  <arg type="s" direction="out"/><arg type="i" direction="out"/><arg type="i" direction="out"/></method>
 <method name="GetTextAtOffset"><arg type="i"/><arg type="u"/>
  <arg type="s" direction="out"/><arg type="i" direction="out"/><arg type="i" direction="out"/></method>
 <method name="GetTextBeforeOffset"><arg type="i"/><arg type="u"/>
  <arg type="s" direction="out"/><arg type="i" direction="out"/><arg type="i" direction="out"/></method>
 <method name="GetTextAfterOffset"><arg type="i"/><arg type="u"/>
  <arg type="s" direction="out"/><arg type="i" direction="out"/><arg type="i" direction="out"/></method>
 <method name="GetAttributes"><arg type="i"/><arg type="a{ss}" direction="out"/>
  <arg type="i" direction="out"/><arg type="i" direction="out"/></method>
 <method name="GetAttributeRun"><arg type="i"/><arg type="b"/><arg type="a{ss}" direction="out"/>
  <arg type="i" direction="out"/><arg type="i" direction="out"/></method>
 <method name="GetDefaultAttributes"><arg type="a{ss}" direction="out"/></method>
 <method name="GetDefaultAttributeSet"><arg type="a{ss}" direction="out"/></method>
 <method name="GetNSelections"><arg type="i" direction="out"/></method>
 <method name="GetSelection"><arg type="i"/>
  <arg type="i" direction="out"/><arg type="i" direction="out"/></method>
 <method name="AddSelection"><arg type="i"/><arg type="i"/><arg type="b" direction="out"/></method>
 <method name="RemoveSelection"><arg type="i"/><arg type="b" direction="out"/></method>
 <method name="SetSelection"><arg type="i"/><arg type="i"/><arg type="i"/>
  <arg type="b" direction="out"/></method>
 <method name="GetCharacterExtents"><arg type="i"/><arg type="u"/>
  <arg type="i" direction="out"/><arg type="i" direction="out"/>
  <arg type="i" direction="out"/><arg type="i" direction="out"/></method>
 <method name="GetRangeExtents"><arg type="i"/><arg type="i"/><arg type="u"/>
  <arg type="i" direction="out"/><arg type="i" direction="out"/>
  <arg type="i" direction="out"/><arg type="i" direction="out"/></method>
 <method name="GetOffsetAtPoint"><arg type="i"/><arg type="i"/><arg type="u"/>
  <arg type="i" direction="out"/></method>
</interface>
<interface name="org.a11y.atspi.EditableText">
 <method name="SetTextContents"><arg type="s"/><arg type="b" direction="out"/></method>
 <method name="InsertText"><arg type="i"/><arg type="s"/><arg type="i"/>
  <arg type="b" direction="out"/></method>
 <method name="DeleteText"><arg type="i"/><arg type="i"/><arg type="b" direction="out"/></method>
 <method name="CopyText"><arg type="i"/><arg type="i"/></method>
 <method name="CutText"><arg type="i"/><arg type="i"/><arg type="b" direction="out"/></method>
 <method name="PasteText"><arg type="i"/><arg type="b" direction="out"/></method>
</interface>
<interface name="org.a11y.atspi.Value">
 <property name="MinimumValue" type="d" access="read"/>
 <property name="MaximumValue" type="d" access="read"/>
 <property name="MinimumIncrement" type="d" access="read"/>
 <property name="CurrentValue" type="d" access="read"/>
</interface>
<interface name="org.a11y.atspi.Cache">
 <method name="GetItems"><arg type="a((so)(so)(so)iiassusau)" direction="out"/></method>
</interface>
</node>)xml";

}  // namespace

GDBusInterfaceInfo* interface_named(const char* name) {
    static GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(description, nullptr);
    return g_dbus_node_info_lookup_interface(node, name);
}
