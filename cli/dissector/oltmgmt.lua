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

-- Each item and each range makes objects for Lua, which are garbage after the packet. JSON takes a
-- third less time when they are collected soon and at once, while the processor's cache has them.
-- Each time, the collector reads all tables below, so they are few and small.
collectgarbage("setpause", 120)
collectgarbage("setstepmul", 1000)

-- Functions that each packet calls. Looking one up costs as much as adding a field.
local add, add_le, set_text = TreeItem.add, TreeItem.add_le, TreeItem.set_text
local set_generated, set_hidden = TreeItem.set_generated, TreeItem.set_hidden
local append_text, note = TreeItem.append_text, TreeItem.add_proto_expert_info
local is_referenced = TreeItem.referenced
local length_of, raw_of, uint_in = Tvb.len, Tvb.raw, TvbRange.le_uint
local unpack = Struct.unpack
local byte_at, set_byte = ByteArray.get_index, ByteArray.set_index

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
  masked = ProtoField.bool("oltmgmt.masked", "Secrets are masked", 8, nil, 0x02),
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

-- The numbers of 4 bytes that each header has, in their order. Answers show those of the request, too,
-- so that one filter can ask for them and for the answer: "oltmgmt.timeout > 10 && oltmgmt.failed".
local kNumbersAt = 8
local head_numbers = {head.run, head.process, head.thread, head.exchange, head.module, head.type,
                      head.timeout, head.record_length}

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

-- Only where somebody looks at the tree.
local function hide(item, p)
  if p.is_visible then set_hidden(item) end
end

-- An adder has the Wireshark fields of a field of the catalog, and a function that adds them to a
-- tree: of the tree, the field's range, what is known of the packet, the packet, the place and the
-- width. It returns the field's item. Making a range costs a quarter of what adding an item does.

-- A list: the number of its items, with the items below it. Each has so many bytes, or is one of
-- the field's bits.
local function list_adder(field, text, items_of, size)
  local count, own = make_below(field, "count", "number"), make_own(field, "number")
  local vlan = field.kind == "vlans" and make_vlan() or nil
  return {count, own, vlan}, function(tree, range, p, tvb, at, width)
    local items = items_of(tvb, at, width)
    local branch = add(tree, count, range, #items)
    if p.is_visible then set_text(branch, field.name .. ": " .. text(items)) end
    for i = 1, #items do
      if size then range = tvb(at + size * (i - 1), size) end
      add(branch, own, range, items[i])
      if vlan then hide(add(branch, vlan, range, items[i]), p) end
    end
    return branch
  end
end

-- Words with a name each, below a text such as "1/2".
local function words_adder(field, names, text)
  local own = make_own(field, "text")
  local fields = {own}
  for _, name in ipairs(names) do fields[#fields + 1] = make_below(field, name, "number") end
  return fields, function(tree, range, _, tvb, at, width)
    local words = words_in(tvb, at, width, 4)
    local branch = add(tree, own, range, text(words))
    for i = 2, #fields do add(branch, fields[i], tvb(at + 4 * (i - 2), 4), words[i - 1]) end
    return branch
  end
end

local adder_of  -- defined below; records use it for their fields
local add_field

local function text_adder(field)
  local own = make_own(field, "text")
  return {own}, function(tree, range)
    return add(tree, own, range, (range:string(ENC_UTF_8):match("^[^\0]*")))
  end
end

local function plain_adder(type)
  return function(field)
    local own = make_own(field, type)
    return {own}, function(tree, range) return add(tree, own, range) end
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
    return {own}, function(tree, range) return add_le(tree, own, range) end
  end
  local name = make_below(field, "name", "text")
  return {own, name}, function(tree, range, p)
    local value = uint_in(range)
    local item, text = add(tree, own, range, value), names[value]
    if text then
      if p.is_visible and not is_enumeration then append_text(item, " (" .. text .. ")") end
      hide(add(item, name, range, text), p)
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
    return {own}, function(tree, range)
      local item = add(tree, own, range, range:le_int() / scale)
      return field.unit and append_text(item, " " .. field.unit) or item
    end
  end,

  flags = function(field)
    local own = make_own(field, "number", base.HEX)
    local name = make_below(field, "name", "text")
    return {own, name}, function(tree, range)
      local bits = uint_in(range)
      local item, names = add(tree, own, range, bits), {}
      for _, value in ipairs(field.values) do
        if value[1] ~= 0 and has_bits(bits, value[1]) then
          names[#names + 1] = value[2]
          add(item, name, range, value[2])
        end
      end
      return append_text(item, " (" .. (names[1] and table.concat(names, ",") or "none") .. ")")
    end
  end,

  duration = function(field)
    local own = make_own(field, "number", with_unit("s"))
    return {own}, function(tree, range)
      local seconds = uint_in(range)
      local item = add(tree, own, range, seconds)
      return seconds < 60 and item or append_text(item, " (" .. duration_text(seconds) .. ")")
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
    return {own}, function(tree, range, _, tvb, at, width)
      return add(tree, own, range, table.concat(words_in(tvb, at, width, 1), "."))
    end
  end,

  records = function(field)
    local count = make_below(field, "count", "number", base.DEC + base.UNIT_STRING, kRecords)
    local record = make_below(field, "record", "none")
    local inner, fields = {}, {count, record}
    for i, place in ipairs(field.record) do
      inner[i] = {offset = place[1], width = place[2].width, adder = adder_of(place[2])}
      for _, one in ipairs(inner[i].adder) do fields[#fields + 1] = one end
      if place[2].kind == "vlan" then
        inner[i].vlan = make_vlan()
        fields[#fields + 1] = inner[i].vlan
      end
    end
    return fields, function(tree, whole, p, tvb, at, width)
      local size, wants = field.record_size, p.wants
      local records = math.floor(width / size)
      local branch = add(tree, count, whole, records)
      for i = 1, records do
        local twig = branch
        if wants[record] then
          twig = add(branch, record, tvb(at, size))
          if p.is_visible then set_text(twig, field.name .. " " .. i) end
        end
        for j = 1, #inner do
          local one = inner[j]
          local wants_vlan = one.vlan and wants[one.vlan]
          if wants_vlan or wants[one.adder] then
            local from = at + one.offset
            local range = tvb(from, one.width)
            if wants[one.adder] then add_field(one.adder, twig, range, p, tvb, from, one.width) end
            -- The last one of a range of one is 0.
            local vlan = wants_vlan and uint_in(range) or 0
            if vlan > 0 then hide(add(twig, one.vlan, range, vlan), p) end
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
    local adder, add_item = kAdders[kind](field)
    adder.name, adder.add = field.name, add_item
    adders[field] = adder
  end
  return adders[field]
end

function add_field(adder, tree, range, p, tvb, at, width)
  local item = adder.add(tree, range, p, tvb, at, width)
  if p.is_masked and raw_of(tvb, at, width):match("^%*%*+$") then
    set_text(item, adder.name .. ": ********")
  end
end

-- The rows of a message, in the order of their offsets: offset, width or false, and adder, one row
-- after the other.
for _, message in ipairs(catalog.messages) do
  local rows = {}
  for _, place in ipairs(message.fields) do
    local offset, field = place[1], place[2]
    rows[#rows + 1], rows[#rows + 2], rows[#rows + 3] = offset, field.width or false, adder_of(field)
  end
  message.rows, message.fields = rows, nil
end

for _, all in pairs(catalog.operations) do  -- those of one message type
  assert(#all <= 8, "a message type has at most 8 operations, the bits of a byte")
  for _, operation in ipairs(all) do
    if operation.request.constants then all.has_constants = true end
  end
end

local sets_of = {}  -- by message type

-- Those operations of one message type whose bits are set, with their texts; made once.
local function set_of(all, type, bits)
  local sets = sets_of[type] or {}
  sets_of[type] = sets
  if not sets[bits] then
    local set, names = {}, {}
    for i, operation in ipairs(all) do
      if has_bits(bits, 2 ^ (i - 1)) then
        set[#set + 1], names[#names + 1] = operation, operation.name
      end
    end
    set.name = set[1] and table.concat(names, " or ") or "message type " .. type
    set.ok = set.name .. ": ok"
    sets[bits] = set
  end
  return sets[bits]
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
local apart          -- the other frame by either, or false if none; nil if they are neighbors
local left_out       -- by message type and block of frames: which operations sent no request
local last_linked    -- frame

-- What filters and columns ask for, by field, adder and message. It is found out again when frames
-- do not follow each other, since a new pass may ask for something else.
local asked, last_frame, root_of_frame
local own_dissector

function oltmgmt.init()
  pending, apart, left_out, last_linked = {}, {}, {}, 0
  asked = nil
  own_dissector = Dissector.get("oltmgmt")
end

local everything = setmetatable({}, {__index = function(cache, key)
  cache[key] = true
  return true
end})

local function asks_for(cache, key)
  local is_asked = false
  if type(key) ~= "table" then
    is_asked = is_referenced(root_of_frame, key)
  elseif key.rows then
    for i = 3, #key.rows, 3 do is_asked = is_asked or cache[key.rows[i]] end
  else
    for i = 1, #key do is_asked = is_asked or cache[key[i]] end
  end
  cache[key] = is_asked
  return is_asked
end

local function asked_in(root, frame)
  if not asked or frame ~= last_frame + 1 then asked = setmetatable({}, {__index = asks_for}) end
  last_frame, root_of_frame = frame, root
  return asked
end

local function is_sent_by(operation, record, p)
  local request = operation.request
  if p.length < request.length or (p.length > request.length and not request.is_open) then
    return false
  end
  for _, constant in ipairs(request.constants or {}) do
    local offset, bytes = constant[1], constant[2]
    local have = record:sub(offset + 1, offset + #bytes)
    if have ~= bytes:sub(1, #have) then return false end
  end
  return true
end

local function may_make(operation, record, p)
  return (not operation.modules or operation.modules[p.module]) and
         (p.kind == kAnswer or is_sent_by(operation, record, p))
end

-- A byte for each frame, in blocks, since the collector would read tables again and again.
local kFramesOfBlock = 4096

local function leave_out(p, bits)
  local blocks, number = left_out[p.type] or {}, math.floor(p.frame / kFramesOfBlock)
  left_out[p.type] = blocks
  if not blocks[number] then
    blocks[number] = ByteArray.new()
    blocks[number]:set_size(kFramesOfBlock)
  end
  set_byte(blocks[number], p.frame % kFramesOfBlock, bits)
end

local function left_out_of(p, request)
  local blocks = left_out[p.type]
  local block = blocks and blocks[math.floor(request / kFramesOfBlock)]
  return block and byte_at(block, request % kFramesOfBlock) or 0
end

-- The operations that may have made the exchange. Constants in the request tell those of one
-- message type apart; an answer has the operations of its request.
local function operations_for(tvb, p)
  local all = catalog.operations[p.type]
  if not all then
    local name = "message type " .. p.type
    return {name = name, ok = name .. ": ok"}
  end
  local every = 2 ^ #all - 1
  if p.kind == kAnswer and p.other then
    return set_of(all, p.type, every - left_out_of(p, p.other))
  end
  local is_read = all.has_constants and p.kind == kRequest and p.have > p.head_size
  local record = is_read and raw_of(tvb, p.head_size) or ""
  local bits, bit = 0, 1
  for i = 1, #all do
    if may_make(all[i], record, p) then bits = bits + bit end
    bit = 2 * bit
  end
  if p.is_first_pass and p.kind == kRequest and bits < every then
    leave_out(p, every - bits)
  end
  return set_of(all, p.type, bits)
end

local function link(p)
  if p.kind == kRequest then
    pending[p.identity], apart[p.frame] = p.frame, false
    return
  end
  local request = pending[p.identity]
  pending[p.identity] = nil
  if request == p.frame - 1 then
    apart[request] = nil
  else
    apart[p.frame] = request or false
    if request then apart[request] = p.frame end
  end
end

-- The frame, or false.
local function other_of(p)
  local other = apart[p.frame]
  if other == nil then return p.kind == kRequest and p.frame + 1 or p.frame - 1 end
  return other
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

local function mark_generated(item, p)
  if p.is_visible then set_generated(item) end
end

local function add_head(tree, tvb, p, wants)
  if wants[head.operation] then
    for i = 1, #p.operations do
      mark_generated(add(tree, head.operation, p.operations[i].name), p)
    end
  end
  if wants[head_numbers] then
    for i = 1, #head_numbers do
      local field = head_numbers[i]
      if wants[field] then add_le(tree, field, tvb(kNumbersAt + 4 * (i - 1), 4)) end
    end
  end
  if p.no_reply and wants[head.no_reply] then add(tree, head.no_reply, tvb(5, 1)) end
  if p.is_masked and wants[head.masked] then add(tree, head.masked, tvb(5, 1)) end
  local link_in = p.kind == kRequest and head.answer_in or head.request_in
  if p.other and wants[link_in] then mark_generated(add(tree, link_in, p.other), p) end
  if p.kind == kRequest then return end
  if wants[head.result] then add(tree, head.result, tvb(40, 4), p.result) end
  if p.result == 0 and wants[head.status] then add(tree, head.status, tvb(44, 2), p.status) end
  if p.failure and wants[head.failed] then mark_generated(add(tree, head.failed, p.failure), p) end
  if wants[head.time] then
    local nanoseconds = p.high * 4294967296 + p.low
    local seconds = math.floor(nanoseconds / 1e9)
    add(tree, head.time, tvb(48, 8), NSTime(seconds % 2147483648, nanoseconds - seconds * 1e9))
  end
end

local function add_expert_infos(tree, p)
  local infos = expert_infos
  if p.failure then
    note(tree, p.result ~= 0 and infos.transport_failure or infos.refused, p.failure)
  end
  if p.is_unanswered then note(tree, infos.unanswered) end
  if p.lost > 0 then
    note(tree, infos.lost, string.format("Exchanges lost before this one: %d", p.lost))
  end
  if #p.operations == 0 then note(tree, infos.unknown) end
  if p.is_short then note(tree, infos.short) end
  if p.is_cut then note(tree, infos.cut) end
end

local function add_record(tree, tvb, p, wants)
  if not p.has_record and p.length == 0 then return end
  local field, message = p.kind == kRequest and head.request or head.reply, p.message
  if not (wants[field] or message and wants[message] or wants[head.rest]) then return end
  local from, size = p.head_size, math.min(p.have - p.head_size, p.length)
  local whole = wants[field] and tvb(from, size)
  if whole then
    tree = add(tree, field, whole)
    if size == 0 then set_text(tree, p.kind == kRequest and "Request: none" or "Reply: none") end
  end
  if not message then return end
  local to = 0
  local rows = message.rows
  for i = 1, #rows, 3 do
    local offset, adder = rows[i], rows[i + 2]
    local width = rows[i + 1] or size - offset
    if width <= 0 or offset + width > size then return end
    to = offset + width
    if wants[adder] then
      local range = width == size and whole or tvb(from + offset, width)
      add_field(adder, tree, range, p, tvb, from + offset, width)
    end
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
    _, p.low, p.high, p.lost = unpack(kHeadLayout, raw_of(tvb, 0, kHeadSize))
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
  local is_request = p.kind == kRequest
  p.is_first_pass = p.frame > last_linked
  if p.is_first_pass then
    link(p)
    last_linked = p.frame
  end
  p.other = other_of(p)
  p.operations = operations_for(tvb, p)
  p.failure = failure_of(p)
  local name = p.operations.name
  columns.info = is_request and name or p.failure and name .. ": " .. p.failure or p.operations.ok

  local operation = p.operations[1]
  p.message = operation and (is_request and operation.request or operation.reply)
  p.has_record = is_request or not (p.failure or p.no_reply)
  p.is_short = p.has_record and p.message and p.length < p.message.length
  p.is_cut = p.have - p.head_size < p.length
  p.is_unanswered = is_request and not p.is_first_pass and not p.other
  local is_noted = p.failure or p.is_short or p.is_cut or p.is_unanswered or p.lost > 0 or
                   not operation
  local wants = everything
  p.is_visible = root.visible
  if not p.is_visible then
    wants = asked_in(root, p.frame)
    if not wants[own_dissector] and not is_noted then return p.have end
  end

  p.wants = wants
  local tree = add(root, oltmgmt, tvb())
  if p.is_visible then append_text(tree, (is_request and ", request: " or ", answer: ") .. name) end
  if is_noted then add_expert_infos(tree, p) end
  add_head(tree, tvb, p, wants)
  if p.have >= p.head_size then add_record(tree, tvb, p, wants) end
  return p.have
end

oltmgmt.dissector = dissect
olt.dissector = dissect
