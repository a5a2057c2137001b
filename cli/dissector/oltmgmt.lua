-- Dissects the exchanges in captures of libolttrace. Uses the table `catalog`, which 'oltctl
-- dissector' writes in front of this code.

local first_load, oltmgmt = pcall(Proto, "oltmgmt", "OLT Management Exchange")
if not first_load then
  error("oltmgmt.lua is loaded twice; expected one copy, in a plugin folder or given with -X", 0)
end
-- Packets name the dissector "olt"; the fields belong to "oltmgmt".
local olt = Proto("olt", "OLT Management Exchange in a capture")

local kMagic = "OLT1"
local kRequest, kAnswer = 1, 2
local kHeadSize = 64
-- The header: magic, kind, flags, size; run, process, thread and exchange, which identify the
-- exchange; module, type, time-out, length; result, status, reserved, duration in two words, lost.
local kHeadLayout = "<c4BBI2c16I4I4I4I4I4I2I2I4I4I4"

-- Methods that each packet calls. Looking one up costs as much as adding a field.
local add, add_le, set_text = TreeItem.add, TreeItem.add_le, TreeItem.set_text
local set_generated, set_hidden = TreeItem.set_generated, TreeItem.set_hidden
local is_referenced = TreeItem.referenced
local length_of, raw_of, uint_in = Tvb.len, Tvb.raw, TvbRange.le_uint

-- What every packet has.
local head = {
  operation = ProtoField.string("oltmgmt.operation", "Operation"),
  run = ProtoField.uint32("oltmgmt.run", "Run"),
  process = ProtoField.uint32("oltmgmt.process", "Process"),
  thread = ProtoField.uint32("oltmgmt.thread", "Thread"),
  exchange = ProtoField.uint32("oltmgmt.exchange", "Exchange"),
  module = ProtoField.uint32("oltmgmt.module", "Module", base.DEC, catalog.modules),
  type = ProtoField.uint32("oltmgmt.type", "Message type"),
  timeout = ProtoField.uint32("oltmgmt.timeout", "Time-out", base.DEC + base.UNIT_STRING, {" s"}),
  record_length = ProtoField.uint32("oltmgmt.record_length", "Record length", base.DEC +
                                    base.UNIT_STRING, {" byte", " bytes"}),
  no_reply = ProtoField.bool("oltmgmt.no_reply", "No reply wanted", 8, nil, 0x01),
  result = ProtoField.uint32("oltmgmt.result", "Result", base.HEX, catalog.results),
  status = ProtoField.uint16("oltmgmt.status", "Status", base.DEC,
                             next(catalog.statuses) and catalog.statuses or nil),
  failed = ProtoField.string("oltmgmt.failed", "Failed"),
  time = ProtoField.relative_time("oltmgmt.time", "Response time"),
  request_in = ProtoField.framenum("oltmgmt.request_in", "Request in", base.NONE,
                                   frametype.REQUEST),
  answer_in = ProtoField.framenum("oltmgmt.answer_in", "Answer in", base.NONE, frametype.RESPONSE),
  request = ProtoField.bytes("oltmgmt.request", "Request"),
  reply = ProtoField.bytes("oltmgmt.reply", "Reply"),
  rest = ProtoField.bytes("oltmgmt.rest", "Bytes that the catalog does not name"),
}

-- The numbers that each header has, and where.
local head_numbers = {
  {head.run, 8}, {head.process, 12}, {head.thread, 16}, {head.exchange, 20}, {head.module, 24},
  {head.type, 28}, {head.timeout, 32}, {head.record_length, 36},
}
head_numbers.fields = {}
for i, number in ipairs(head_numbers) do head_numbers.fields[i] = number[1] end

local expert_infos = {
  transport_failure = ProtoExpert.new("oltmgmt.transport_failure", "The exchange failed",
                                      expert.group.RESPONSE_CODE, expert.severity.ERROR),
  refused = ProtoExpert.new("oltmgmt.refused", "The module refused the request",
                            expert.group.RESPONSE_CODE, expert.severity.WARN),
  unanswered = ProtoExpert.new("oltmgmt.unanswered", "No answer in this capture",
                               expert.group.SEQUENCE, expert.severity.WARN),
  lost = ProtoExpert.new("oltmgmt.lost", "Exchanges before this one were lost",
                         expert.group.SEQUENCE, expert.severity.WARN),
  short = ProtoExpert.new("oltmgmt.short", "The record is shorter than the operation needs",
                          expert.group.MALFORMED, expert.severity.WARN),
  malformed = ProtoExpert.new("oltmgmt.malformed", "Not an exchange of version 1",
                              expert.group.MALFORMED, expert.severity.ERROR),
  unknown = ProtoExpert.new("oltmgmt.unknown", "No operation makes this exchange",
                            expert.group.UNDECODED, expert.severity.NOTE),
  cut = ProtoExpert.new("oltmgmt.cut", "The end of the packet was not captured",
                        expert.group.UNDECODED, expert.severity.NOTE),
  masked = ProtoExpert.new("oltmgmt.masked", "Secrets are masked", expert.group.SECURITY,
                           expert.severity.CHAT),
}

-- The fields of the catalog. All fields of one name have the filter "oltmgmt.NAME". When their
-- types differ, those of another type than the first have the filter "oltmgmt.NAME.TYPE". Names
-- that the dissector uses itself become "oltmgmt.field.NAME".

local kMakers = {
  number = ProtoField.uint32,
  signed = ProtoField.int32,
  decimal = ProtoField.double,
  text = ProtoField.string,
  mac = ProtoField.ether,
  ipv4 = ProtoField.ipv4,
  bytes = ProtoField.bytes,
  none = ProtoField.none,
}

local of_head = {}
for name in pairs(head) do of_head[name] = true end
for name in pairs(expert_infos) do of_head[name] = true end

local type_of = {}     -- by filter
local made = {}        -- fields by filter, display and form
local made_count = {}  -- by filter
local plain = {}       -- filters of numbers, with their labels

local function filter_of(name, type)
  local filter = "oltmgmt." .. (of_head[name] and "field." or "") .. name
  type_of[filter] = type_of[filter] or type
  return type_of[filter] == type and filter or filter .. "." .. type
end

-- form: a unit, or the names of values, as one of the tables below.
local function make(type, filter, label, display, form)
  local key = string.format("%s %s %s", filter, tostring(display), tostring(form))
  if not made[key] then
    made[key] = kMakers[type](filter, label, display, form)
    made_count[filter] = (made_count[filter] or 0) + 1
    if type == "number" then plain[filter] = label end
  end
  return made[key]
end

-- A field's own; more of them stand below it.
local function make_own(field, type, ...)
  return make(type, filter_of(field.name, type), field.name, ...)
end

local function make_below(field, suffix, type, ...)
  local before = of_head[field.name] and "oltmgmt.field." or "oltmgmt."
  return make(type, before .. field.name .. "." .. suffix, field.name .. " " .. suffix, ...)
end

-- The VLANs in a list or in a record within a record are found as "vlan", too.
local function make_vlan()
  return make("number", filter_of("vlan", "number"), "vlan", base.DEC)
end

-- One table for all fields that have the same names of values, or the same unit.
local forms = {}

local function names_in(values)
  local names, key = {}, ""
  for _, value in ipairs(values or {}) do
    names[value[1]] = value[2]
    key = key .. value[1] .. "=" .. value[2] .. "\0"
  end
  forms[key] = forms[key] or names
  return forms[key]
end

local kRecords = {" record", " records"}

local function with_unit(unit)
  forms[unit] = forms[unit] or {" " .. unit}
  return base.DEC + base.UNIT_STRING, forms[unit]
end

-- "1,2,5-8"
local function ranges_text(numbers)
  local parts, first = {}, 1
  while numbers[first] do
    local last = first
    while numbers[last + 1] == numbers[last] + 1 do last = last + 1 end
    if last < first + 2 then last = first end
    parts[#parts + 1] = numbers[first] .. (last > first and "-" .. numbers[last] or "")
    first = last + 1
  end
  return #parts > 0 and table.concat(parts, ",") or "none"
end

-- "1d2h3m4s"
local function duration_text(seconds)
  local text = ""
  for _, unit in ipairs({{"d", 86400}, {"h", 3600}, {"m", 60}, {"s", 1}}) do
    local count = math.floor(seconds / unit[2])
    if count > 0 then text = string.format("%s%d%s", text, count, unit[1]) end
    seconds = seconds % unit[2]
  end
  return text
end

-- Numbers of that size, at most 4 bytes. Bytes of a string cost less than ranges of the packet.
local function words_in(tvb, at, width, size)
  local raw, words = raw_of(tvb, at, width), {}
  for i = 1, width - size + 1, size do
    local first, second, third, fourth = raw:byte(i, i + size - 1)
    words[#words + 1] = first + 256 * (second or 0) + 65536 * (third or 0) +
                        16777216 * (fourth or 0)
  end
  return words
end

local function has_bits(bits, mask)
  while mask > 0 do
    if mask % 2 > bits % 2 then return false end
    bits, mask = math.floor(bits / 2), math.floor(mask / 2)
  end
  return true
end

-- An adder has the Wireshark fields of a field of the catalog, and a function that adds them to a
-- tree: of the tree, the packet, the place, the width and what is known of the packet. It returns
-- the field's item.

-- A list: the number of its items, with the items below it. Each has so many bytes, or is one of
-- the field's bits.
local function list_adder(field, text, items_of, size)
  local count, own = make_below(field, "count", "number"), make_own(field, "number")
  local vlan = field.kind == "vlans" and make_vlan() or nil
  return {count, own, vlan}, function(tree, tvb, at, width)
    local items = items_of(tvb, at, width)
    local branch = add(tree, count, tvb(at, width), #items)
    set_text(branch, field.name .. ": " .. text(items))
    for i = 1, #items do
      local range = size and tvb(at + size * (i - 1), size) or tvb(at, width)
      add(branch, own, range, items[i])
      if vlan then set_hidden(add(branch, vlan, range, items[i])) end
    end
    return branch
  end
end

-- Words with a name each, below a text such as "1/2".
local function words_adder(field, names, text)
  local own = make_own(field, "text")
  local fields = {own}
  for _, name in ipairs(names) do fields[#fields + 1] = make_below(field, name, "number") end
  return fields, function(tree, tvb, at, width)
    local branch = add(tree, own, tvb(at, width), text(words_in(tvb, at, width, 4)))
    for i = 2, #fields do add_le(branch, fields[i], tvb(at + 4 * (i - 2), 4)) end
    return branch
  end
end

local adder_of  -- defined below; records use it for their fields
local add_field

local function text_adder(field)
  local own = make_own(field, "text")
  return {own}, function(tree, tvb, at, width)
    local range = tvb(at, width)
    return add(tree, own, range, (range:string(ENC_UTF_8):match("^[^\0]*")))
  end
end

local function plain_adder(type)
  return function(field)
    local own = make_own(field, type)
    return {own}, function(tree, tvb, at, width) return add(tree, own, tvb(at, width)) end
  end
end

local function number_adder(field)
  local names = names_in(field.values)
  -- Wireshark would show all other values as unknown, so it is not told the names of special ones.
  local is_enumeration = field.values and #field.values > 1 and not field.unit
  local own
  if is_enumeration then
    own = make_own(field, "number", base.DEC, names)
  elseif field.unit then
    own = make_own(field, "number", with_unit(field.unit))
  else
    own = make_own(field, "number", base.DEC)
  end
  if not field.values then
    return {own}, function(tree, tvb, at, width) return add_le(tree, own, tvb(at, width)) end
  end
  local name = make_below(field, "name", "text")
  return {own, name}, function(tree, tvb, at, width)
    local range = tvb(at, width)
    local item, text = add_le(tree, own, range), names[uint_in(range)]
    if text then
      if not is_enumeration then item:append_text(" (" .. text .. ")") end
      set_hidden(add(item, name, range, text))
    end
    return item
  end
end

local kAdders = {
  text = text_adder,
  padded = text_adder,
  listing = text_adder,
  number = number_adder,
  vlan = number_adder,
  mac = plain_adder("mac"),
  ipv4 = plain_adder("ipv4"),
  bytes = plain_adder("bytes"),

  signed = function(field)
    local scale = 10 ^ field.decimals
    local own = field.decimals > 0 and make_own(field, "decimal") or make_own(field, "signed")
    return {own}, function(tree, tvb, at, width)
      local range = tvb(at, width)
      local item = add(tree, own, range, range:le_int() / scale)
      return field.unit and item:append_text(" " .. field.unit) or item
    end
  end,

  flags = function(field)
    local own = make_own(field, "number", base.HEX)
    local name = make_below(field, "name", "text")
    return {own, name}, function(tree, tvb, at, width)
      local range = tvb(at, width)
      local bits = uint_in(range)
      local item, names = add_le(tree, own, range), {}
      for _, value in ipairs(field.values) do
        if value[1] ~= 0 and has_bits(bits, value[1]) then
          names[#names + 1] = value[2]
          add(item, name, range, value[2])
        end
      end
      return item:append_text(" (" .. (names[1] and table.concat(names, ",") or "none") .. ")")
    end
  end,

  duration = function(field)
    local own = make_own(field, "number", with_unit("s"))
    return {own}, function(tree, tvb, at, width)
      local range = tvb(at, width)
      local item, seconds = add_le(tree, own, range), uint_in(range)
      return seconds < 60 and item or item:append_text(" (" .. duration_text(seconds) .. ")")
    end
  end,

  ports = function(field)
    local function ports_in(tvb, at, width)
      local bits, ports = uint_in(tvb(at, width)), {}
      for port = 1, 8 * width do
        if bits % 2 == 1 then ports[#ports + 1] = port end
        bits = math.floor(bits / 2)
      end
      return ports
    end
    return list_adder(field, ranges_text, ports_in)
  end,

  numbers = function(field)
    local unit = field.unit and " " .. field.unit or ""
    return list_adder(field, function(words) return table.concat(words, ",") .. unit end,
                      function(tvb, at, width) return words_in(tvb, at, width, 4) end, 4)
  end,

  -- All up to the last that is not 0.
  vlans = function(field)
    local function vlans_in(tvb, at, width)
      local vlans = words_in(tvb, at, width, 2)
      while vlans[#vlans] == 0 do vlans[#vlans] = nil end
      return vlans
    end
    return list_adder(field, ranges_text, vlans_in, 2)
  end,

  interface = function(field)
    return words_adder(field, {"slot", "port"}, function(words) return table.concat(words, "/") end)
  end,

  -- Slot, interface and ONU; if there is room, a kind and a UNI port.
  ont = function(field)
    local names = {"slot", "interface", "onu"}
    if field.width >= 20 then names = {"slot", "interface", "onu", "kind", "port"} end
    return words_adder(field, names, function(words)
      local port = words[5] and words[5] ~= 0 and ":" .. words[5] or ""
      return string.format("%d/%d/%d%s", words[1], words[2], words[3], port)
    end)
  end,

  version = function(field)
    local own = make_own(field, "text")
    return {own}, function(tree, tvb, at, width)
      return add(tree, own, tvb(at, width), table.concat(words_in(tvb, at, width, 1), "."))
    end
  end,

  records = function(field)
    local count = make_below(field, "count", "number", base.DEC + base.UNIT_STRING, kRecords)
    local record = make_below(field, "record", "none")
    local inner, fields = {}, {count, record}
    for i, place in ipairs(field.record) do
      inner[i] = {offset = place[1], width = place[2].width, adder = adder_of(place[2])}
      for _, one in ipairs(inner[i].adder.fields) do fields[#fields + 1] = one end
      if place[2].kind == "vlan" then
        inner[i].vlan = make_vlan()
        fields[#fields + 1] = inner[i].vlan
      end
    end
    return fields, function(tree, tvb, at, width, p)
      local size, wants = field.record_size, p.wants
      local records = math.floor(width / size)
      local branch = add(tree, count, tvb(at, width), records)
      for i = 1, records do
        local twig = branch
        if wants[record] then
          twig = set_text(add(branch, record, tvb(at, size)), field.name .. " " .. i)
        end
        for j = 1, #inner do
          local one = inner[j]
          local from = at + one.offset
          if wants[one.adder] then add_field(one.adder, twig, tvb, from, one.width, p) end
          -- The last one of a range of one is 0.
          if one.vlan and wants[one.vlan] and uint_in(tvb(from, one.width)) > 0 then
            set_hidden(add_le(twig, one.vlan, tvb(from, one.width)))
          end
        end
        at = at + size
      end
      local rest = width % size
      if rest > 0 then add(branch, head.rest, tvb(at, rest)) end
      return branch
    end
  end,
}

local adders = {}  -- by field

function adder_of(field)
  if not adders[field] then
    local is_wide = field.kind == "number" and field.width > 4
    local kind = (field.is_reserved or is_wide) and "bytes" or field.kind
    local fields, add_item = kAdders[kind](field)
    adders[field] = {name = field.name, fields = fields, add = add_item}
  end
  return adders[field]
end

function add_field(adder, tree, tvb, at, width, p)
  local item = adder.add(tree, tvb, at, width, p)
  if p.is_masked and raw_of(tvb, at, width):match("^%*%*+$") then
    item:set_text(adder.name .. ": ********")
  end
end

-- The rows of a message, in the order of their offsets, and the Wireshark fields of all of them.
local function prepare(message)
  if message.rows then return end  -- operations share messages
  message.rows = {}
  local fields = {}
  for i, place in ipairs(message.fields) do
    local adder = adder_of(place[2])
    message.rows[i] = {offset = place[1], width = place[2].width, adder = adder}
    for _, field in ipairs(adder.fields) do fields[#fields + 1] = field end
  end
  message.fields = fields
end

local by_type = {}
for _, operation in ipairs(catalog.operations) do
  prepare(operation.request)
  prepare(operation.reply)
  operation.is_for_any_module = next(operation.modules) == nil
  by_type[operation.type] = by_type[operation.type] or {sets = {}}
  table.insert(by_type[operation.type], operation)
end

-- Those operations of one message type whose bits are set, with their texts; made once.
local function set_of(all, bits)
  if not all.sets[bits] then
    local set, names = {}, {}
    for i, operation in ipairs(all) do
      if has_bits(bits, 2 ^ (i - 1)) then
        set[#set + 1], names[#names + 1] = operation, operation.name
      end
    end
    set.name = set[1] and table.concat(names, " or ") or "message type " .. all[1].type
    set.ok = set.name .. ": ok"
    all.sets[bits] = set
  end
  return all.sets[bits]
end

-- Where several fields have one filter, Wireshark looks up names of values in the first of them.
-- That is one without names, so that oltmgmt.state == "up" is an error and does not match other
-- states with the same number. oltmgmt.state.name has the name.
local fields = {}
for filter, label in pairs(plain) do
  if made_count[filter] > 1 then fields[#fields + 1] = ProtoField.uint32(filter, label) end
end
for _, field in pairs(made) do fields[#fields + 1] = field end
for _, field in pairs(head) do fields[#fields + 1] = field end
oltmgmt.fields = fields
oltmgmt.experts = expert_infos

-- Links between requests and answers; filled in the first pass over the capture.
local pending        -- the request's frame, by what identifies the exchange
local other_of       -- the answer's frame by the request's, and the other way round
local operations_of  -- by the request's frame, if the message type has several

-- What filters and columns ask for, by field, adder and message. It is found out again when frames
-- do not follow each other, since a new pass may ask for something else.
local asked, last_frame, root_of_frame
local own_dissector

function oltmgmt.init()
  pending, other_of, operations_of = {}, {}, {}
  asked = nil
  own_dissector = Dissector.get("oltmgmt")
end

local everything = setmetatable({}, {__index = function(cache, key)
  cache[key] = true
  return true
end})

local function asks_for(cache, key)
  local is_asked = false
  for _, field in ipairs(type(key) == "table" and key.fields or {key}) do
    is_asked = is_asked or is_referenced(root_of_frame, field)
  end
  cache[key] = is_asked
  return is_asked
end

local function asked_in(root, frame)
  if not asked or frame ~= last_frame + 1 then asked = setmetatable({}, {__index = asks_for}) end
  last_frame, root_of_frame = frame, root
  return asked
end

local function is_sent_by(operation, tvb, p)
  local request = operation.request
  if p.length < request.length or (p.length > request.length and not request.is_open) then
    return false
  end
  for _, constant in ipairs(request.constants) do
    local from = p.head_size + constant[1]
    local have = math.min(#constant[2], p.have - from)
    if have > 0 and raw_of(tvb, from, have) ~= constant[2]:sub(1, have) then return false end
  end
  return true
end

local function may_make(operation, tvb, p)
  return (operation.modules[p.module] or operation.is_for_any_module) and
         (p.kind == kAnswer or is_sent_by(operation, tvb, p))
end

-- The operations that may have made the exchange. Constants in the request tell those of one
-- message type apart; an answer has the operations of its request.
local function operations_for(tvb, p)
  local all = by_type[p.type]
  if not all then
    local name = "message type " .. p.type
    return {name = name, ok = name .. ": ok"}
  end
  local request = p.kind == kAnswer and other_of[p.frame]
  if request and operations_of[request] then return operations_of[request] end
  local bits = 0
  for i = 1, #all do
    if request or may_make(all[i], tvb, p) then bits = bits + 2 ^ (i - 1) end
  end
  local set = set_of(all, bits)
  if p.kind == kRequest and #set < #all then operations_of[p.frame] = set end
  return set
end

local function link(p)
  if p.kind == kRequest then
    pending[p.identity] = p.frame
  elseif pending[p.identity] then
    local request = pending[p.identity]
    other_of[request], other_of[p.frame] = p.frame, request
    pending[p.identity] = nil
  end
end

local function failure_of(p)
  if p.kind == kRequest then return nil end
  if p.result ~= 0 then
    return catalog.results[p.result] or string.format("result 0x%08x", p.result)
  end
  if p.status == 0 then return nil end
  local text = catalog.statuses[p.status]
  return string.format("refused, status %d", p.status) .. (text and ": " .. text or "")
end

local function add_head(tree, tvb, p, wants)
  if wants[head.operation] then
    for i = 1, #p.operations do
      set_generated(add(tree, head.operation, tvb(28, 4), p.operations[i].name))
    end
  end
  if wants[head_numbers] then
    for i = 1, #head_numbers do
      local number = head_numbers[i]
      if wants[number[1]] then add_le(tree, number[1], tvb(number[2], 4)) end
    end
  end
  if p.no_reply and wants[head.no_reply] then add(tree, head.no_reply, tvb(5, 1)) end
  local link_in = p.kind == kRequest and head.answer_in or head.request_in
  if other_of[p.frame] and wants[link_in] then
    set_generated(add(tree, link_in, tvb(20, 4), other_of[p.frame]))
  end
  if p.kind == kRequest then return end
  if wants[head.result] then add_le(tree, head.result, tvb(40, 4)) end
  if p.result == 0 and wants[head.status] then add_le(tree, head.status, tvb(44, 2)) end
  if p.failure and wants[head.failed] then
    set_generated(add(tree, head.failed, tvb(40, 6), p.failure))
  end
  if wants[head.time] then
    local nanoseconds = p.high * 4294967296 + p.low
    local seconds = math.floor(nanoseconds / 1e9)
    add(tree, head.time, tvb(48, 8), NSTime(seconds % 2147483648, nanoseconds - seconds * 1e9))
  end
end

local function add_expert_infos(tree, p)
  local function note(info, ...) tree:add_proto_expert_info(expert_infos[info], ...) end
  if p.failure then note(p.result ~= 0 and "transport_failure" or "refused", p.failure) end
  if p.is_unanswered then note("unanswered") end
  if p.lost > 0 then note("lost", string.format("Exchanges lost before this one: %d", p.lost)) end
  if #p.operations == 0 then note("unknown") end
  if p.is_short then note("short") end
  if p.is_cut then note("cut") end
  if p.is_masked then note("masked") end
end

local function add_record(tree, tvb, p, wants)
  if not p.has_record and p.length == 0 then return end
  local field, message = p.kind == kRequest and head.request or head.reply, p.message
  if not (wants[field] or message and wants[message] or wants[head.rest]) then return end
  local from, size = p.head_size, math.min(p.have - p.head_size, p.length)
  if wants[field] then
    tree = add(tree, field, tvb(from, size))
    if size == 0 then set_text(tree, p.kind == kRequest and "Request: none" or "Reply: none") end
  end
  if not message then return end
  local to = 0
  for i = 1, #message.rows do
    local row = message.rows[i]
    local offset = row.offset
    local width = row.width or size - offset
    if width <= 0 or offset + width > size then return end
    to = offset + width
    if wants[row.adder] then add_field(row.adder, tree, tvb, from + offset, width, p) end
  end
  if to < size and wants[head.rest] then add(tree, head.rest, tvb(from + to, size - to)) end
end

local function add_malformed(tvb, info, root)
  local is_cut = length_of(tvb) < math.min(tvb:reported_len(), kHeadSize)
  info.cols.info = is_cut and "cut within the header" or "not an exchange of version 1"
  add(root, oltmgmt, tvb()):add_proto_expert_info(
    is_cut and expert_infos.cut or expert_infos.malformed)
end

-- The packet that is being dissected. One table serves all packets, since making one is slow.
local packet = {}

-- Fills in the header; false when there is none.
local function read_head(p, tvb, frame)
  p.frame, p.have = frame, length_of(tvb)
  if p.have < kHeadSize then return false end
  local magic, flags, _
  magic, p.kind, flags, p.head_size, p.identity, p.module, p.type, _, p.length, p.result, p.status,
    _, p.low, p.high, p.lost = Struct.unpack(kHeadLayout, raw_of(tvb, 0, kHeadSize))
  p.no_reply, p.is_masked = flags % 2 == 1, flags % 4 >= 2
  return magic == kMagic and (p.kind == kRequest or p.kind == kAnswer) and
         p.head_size >= kHeadSize and
         (p.head_size <= p.have or p.head_size <= tvb:reported_len())
end

local function dissect(tvb, info, root)
  local columns, p = info.cols, packet
  columns.protocol = "OLTMGMT"
  if not read_head(p, tvb, info.number) then
    add_malformed(tvb, info, root)
    return p.have
  end
  local is_visited, is_request = info.visited, p.kind == kRequest
  if not is_visited then link(p) end
  p.operations = operations_for(tvb, p)
  p.failure = failure_of(p)
  local name = p.operations.name
  columns.info = is_request and name or p.failure and name .. ": " .. p.failure or p.operations.ok

  local operation = p.operations[1]
  p.message = operation and (is_request and operation.request or operation.reply)
  p.has_record = is_request or not (p.failure or p.no_reply)
  p.is_short = p.has_record and p.message and p.length < p.message.length
  p.is_cut = p.have - p.head_size < p.length
  p.is_unanswered = is_request and is_visited and not other_of[p.frame]
  local is_noted = p.failure or p.is_short or p.is_cut or p.is_unanswered or p.is_masked or
                   p.lost > 0 or not operation
  local wants, is_visible = everything, root.visible
  if not is_visible then
    wants = asked_in(root, p.frame)
    if not wants[own_dissector] and not is_noted then return p.have end
  end

  p.wants = wants
  local tree = add(root, oltmgmt, tvb())
  if is_visible then tree:append_text((is_request and ", request: " or ", answer: ") .. name) end
  if is_noted then add_expert_infos(tree, p) end
  add_head(tree, tvb, p, wants)
  if p.have >= p.head_size then add_record(tree, tvb, p, wants) end
  return p.have
end

oltmgmt.dissector = dissect
olt.dissector = dissect
